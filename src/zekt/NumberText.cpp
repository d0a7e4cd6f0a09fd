#include "zekt/NumberText.h"

#include "zekt/Errors.h"
#include "zekt/Lexical.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace ZEKT {

namespace {

constexpr int kDigits = 13;
constexpr double kLargestInteger = 1e13; // below, an integer's text has all its digits

// from_chars does not tell too large from too small. Of a number that is one of them: by how many places the
// first digit that counts stands left of the point, the exponent taken in.
bool isLarge(std::string_view digits) {
    const std::size_t mark = std::min(digits.size(), digits.find_first_of("eE"));
    const std::string_view mantissa = digits.substr(0, mark);
    const auto point = static_cast<std::int64_t>(std::min(mantissa.size(), mantissa.find('.')));
    const auto first = static_cast<std::int64_t>(std::min(mantissa.size(), mantissa.find_first_not_of("0.")));
    std::string_view exponentDigits = digits.substr(std::min(digits.size(), mark + 1));
    const bool negative = exponentDigits.starts_with('-');
    if (negative || exponentDigits.starts_with('+')) {
        exponentDigits.remove_prefix(1);
    }
    std::int64_t exponent = 0;
    const auto read =
        std::from_chars(exponentDigits.data(), exponentDigits.data() + exponentDigits.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) {
        return !negative;
    }
    return point - first + (negative ? -exponent : exponent) > 0;
}

double readExactly(std::string_view text) {
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string_view exactText(double value, char* buffer) {
    const auto end =
        std::to_chars(buffer, buffer + kLongestNumberText, value, std::chars_format::general, kDigits);
    return {buffer, static_cast<std::size_t>(end.ptr - buffer)};
}

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// value = +-significand / 10^scale, rounded to 13 digits.
struct Decimal {
    std::int64_t significand;
    int scale;
};

// For magnitudes in [1e-4, 1e13). The product with a power of ten is off by less than half a unit in its last
// place, which is 1/512 below 1e13: further than that from a tie the rounding is right. Where it might not
// be, and at the ends of the range of digits, the answer is no.
bool toDecimal(double magnitude, Decimal& decimal) {
    int binary = 0;
    std::frexp(magnitude, &binary);
    // log10 of 2 is 1233/4096; this is floor(log10) or one less.
    const int tens = ((binary - 1) * 1233) >> 12;
    int scale = kDigits - 1 - tens;
    double product = magnitude * kPowersOfTen[scale];
    if (product >= 1e13) {
        product = magnitude * kPowersOfTen[--scale];
    }
    if (product < 1e12 || product >= 1e13 - 1) {
        return false;
    }
    const double whole = std::floor(product);
    const double rest = product - whole;
    if (std::abs(rest - 0.5) < 1.0 / 256) {
        return false;
    }
    decimal.significand = static_cast<std::int64_t>(whole) + (rest > 0.5 ? 1 : 0);
    decimal.scale = scale;
    return true;
}

bool isPlainInteger(double value) {
    return std::abs(value) < kLargestInteger &&
           value == static_cast<double>(static_cast<std::int64_t>(value));
}

bool isPlainFraction(double magnitude) {
    return magnitude >= 1e-4 && magnitude < kLargestInteger;
}

std::string_view fractionText(Decimal decimal, bool negative, char* buffer) {
    while (decimal.scale > 0 && decimal.significand % 10 == 0) {
        decimal.significand /= 10;
        --decimal.scale;
    }
    char digits[kLongestNumberText];
    const auto written = std::to_chars(digits, digits + sizeof digits, decimal.significand);
    const int count = static_cast<int>(written.ptr - digits);
    char* out = buffer;
    if (negative) {
        *out++ = '-';
    }
    const int whole = count - decimal.scale; // digits left of the point
    if (whole > 0) {
        std::memcpy(out, digits, static_cast<std::size_t>(whole));
        out += whole;
    } else {
        *out++ = '0';
    }
    if (decimal.scale > 0) {
        *out++ = '.';
        for (int zeros = whole; zeros < 0; ++zeros) {
            *out++ = '0';
        }
        const int first = std::max(whole, 0);
        std::memcpy(out, digits + first, static_cast<std::size_t>(count - first));
        out += count - first;
    }
    return {buffer, static_cast<std::size_t>(out - buffer)};
}

Numeric readMagnitude(std::string_view text, double& value) {
    if (text.empty() || (!Lexical::isDigit(text[0]) && text[0] != '.')) {
        return Numeric::no; // from_chars knows signs and "inf", too
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) {
        return Numeric::no;
    }
    if (error == std::errc::result_out_of_range) {
        value = 0;
        return isLarge(text) ? Numeric::overflow : Numeric::yes;
    }
    return Numeric::yes;
}

} // namespace

std::size_t numberLength(std::string_view text) {
    std::size_t at = 0;
    const auto digits = [&text, &at] {
        const std::size_t first = at;
        while (at < text.size() && Lexical::isDigit(text[at])) {
            ++at;
        }
        return at - first;
    };
    std::size_t count = digits();
    if (at < text.size() && text[at] == '.') {
        ++at;
        count += digits();
    }
    if (count == 0) {
        return 0;
    }
    const std::size_t end = at;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
            ++at;
        }
        if (digits() > 0) {
            return at;
        }
    }
    return end;
}

Numeric readNumber(std::string_view text, double& value) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    double magnitude = 0;
    const Numeric read = readMagnitude(text, magnitude);
    if (read == Numeric::yes) {
        value = negative ? -magnitude : magnitude;
    }
    return read;
}

double toNumber(std::string_view text) {
    double value = 0;
    switch (readNumber(text, value)) {
    case Numeric::yes:
        return value;
    case Numeric::overflow:
        throw RunTimeException("Number overflow");
    default:
        throw RunTimeException("Invalid number: " + std::string(text));
    }
}

std::int64_t toInteger(std::string_view text) {
    double value = 0;
    const Numeric read = readNumber(text, value);
    if (read == Numeric::overflow) {
        throw RunTimeException("Number overflow");
    }
    if (read != Numeric::yes || value != std::floor(value)) {
        throw RunTimeException("Invalid integer: " + std::string(text));
    }
    constexpr double kEnd = 9007199254740992.0; // 2^53; counts beyond have no meaning to anyone
    return static_cast<std::int64_t>(std::clamp(value, -kEnd, kEnd));
}

bool toBoolean(std::string_view text) {
    if (text != "yes" && text != "no") {
        throw RunTimeException("Invalid boolean (should be 'yes' or 'no'): " + std::string(text));
    }
    return text == "yes";
}

std::string_view numberText(double value, char* buffer) {
    if (isPlainInteger(value)) {
        const auto end = std::to_chars(buffer, buffer + kLongestNumberText, static_cast<std::int64_t>(value));
        return {buffer, static_cast<std::size_t>(end.ptr - buffer)};
    }
    Decimal decimal{};
    if (isPlainFraction(std::abs(value)) && toDecimal(std::abs(value), decimal)) {
        return fractionText(decimal, value < 0, buffer);
    }
    return exactText(value, buffer);
}

double roundedAsText(double value) {
    if (isPlainInteger(value)) {
        return value + 0.0; // never -0
    }
    Decimal decimal{};
    if (isPlainFraction(std::abs(value)) && toDecimal(std::abs(value), decimal)) {
        // Both are exact, so the quotient is the double nearest to the decimal: what reading the text gives.
        const double magnitude = static_cast<double>(decimal.significand) / kPowersOfTen[decimal.scale];
        return value < 0 ? -magnitude : magnitude;
    }
    char buffer[kLongestNumberText];
    return readExactly(exactText(value, buffer));
}

} // namespace ZEKT
