#include "notation/Numbers.h"

#include "notation/Errors.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace Stackbrace {

namespace {

[[noreturn]] void fail(std::string_view text) {
    throw Exception("Invalid number: " + std::string(text));
}

std::string_view withoutLeadingSpace(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || (text.front() >= '\t' && text.front() <= '\r'))) {
        text.remove_prefix(1);
    }
    return text;
}

bool takeSign(std::string_view& text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    return negative;
}

int digitOf(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

bool startsHexadecimal(std::string_view text) {
    return text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x';
}

// Whether a decimal or hexadecimal number that does not fit is too large, not too small: by the place of its
// first digit that is not 0.
bool isHuge(std::string_view number, char exponentMark) {
    std::size_t exponentAt = 0;
    while (exponentAt < number.size() && (number[exponentAt] | 0x20) != exponentMark) {
        ++exponentAt;
    }
    const auto mantissa = number.substr(0, exponentAt);
    const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const auto lead = static_cast<std::int64_t>(std::min(mantissa.find_first_not_of("0."), mantissa.size()));
    std::int64_t exponent = 0;
    if (exponentAt < number.size()) {
        auto digits = number.substr(exponentAt + 1);
        const bool negative = takeSign(digits);
        const char* const end = digits.data() + digits.size();
        if (std::from_chars(digits.data(), end, exponent).ec == std::errc::result_out_of_range) {
            return !negative;
        }
        exponent = negative ? -exponent : exponent;
    }
    const std::int64_t bitsPerDigit = exponentMark == 'p' ? 4 : 1;
    return (point - lead) * bitsPerDigit + exponent > 0;
}

template <class Float>
Float toFloat(std::string_view text) {
    std::string_view number = withoutLeadingSpace(text);
    const bool negative = takeSign(number);
    if (number.starts_with('-')) {
        fail(text); // from_chars takes a sign of its own
    }
    Float value = 0;
    auto format = std::chars_format::general;
    if (startsHexadecimal(number) && (digitOf(number[2]) < 16 || number[2] == '.')) {
        format = std::chars_format::hex;
        number.remove_prefix(2);
    }
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value, format);
    if (error == std::errc::invalid_argument) {
        if (format == std::chars_format::hex) {
            return negative ? -Float{0} : Float{0}; // "0x." is the 0 alone
        }
        fail(text);
    }
    if (error == std::errc::result_out_of_range) {
        number = number.substr(0, static_cast<std::size_t>(end - number.data()));
        const bool huge = isHuge(number, format == std::chars_format::hex ? 'p' : 'e');
        value = huge ? std::numeric_limits<Float>::infinity() : Float{0};
    }
    return negative ? -value : value;
}

} // namespace

std::int32_t toInt32(std::string_view text) {
    constexpr std::int64_t kBeyond = std::int64_t{1} << 40; // digits go on beyond, but nothing is to overflow
    std::string_view number = withoutLeadingSpace(text);
    const bool negative = takeSign(number);
    int base = 10;
    if (startsHexadecimal(number) && digitOf(number[2]) < 16) {
        base = 16;
        number.remove_prefix(2);
    } else if (number.starts_with('0')) {
        base = 8;
    }
    std::size_t digits = 0;
    std::int64_t value = 0;
    for (; digits < number.size() && digitOf(number[digits]) < base; ++digits) {
        value = std::min(value * base + digitOf(number[digits]), kBeyond);
    }
    if (digits == 0) {
        fail(text);
    }
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(negative ? -value : value,
                                                              std::numeric_limits<std::int32_t>::min(),
                                                              std::numeric_limits<std::int32_t>::max()));
}

double toFloat64(std::string_view text) {
    return toFloat<double>(text);
}

float toFloat32(std::string_view text) {
    return toFloat<float>(text);
}

std::string numberText(float value) {
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed).ptr;
    return {buffer, end};
}

} // namespace Stackbrace
