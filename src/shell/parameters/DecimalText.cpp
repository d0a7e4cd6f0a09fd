#include "parameters/DecimalText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace Parameters {

namespace {

// The smallest float has 149 decimals; anything longer was not written by us and is not a value someone
// typed.
constexpr std::size_t kLongestNumber = 400;

// Digits that a quotient is carried on for: past the 149 decimals of the smallest float.
constexpr std::size_t kQuotientDecimals = 160;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Numbers with an exponent are typed by hand, if at all: a double's precision is enough for them.
std::optional<Decimal> parseWithExponent(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(number)) {
        return std::nullopt;
    }
    char buffer[kLongestNumber];
    const auto [written, failed] =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed);
    if (failed != std::errc{}) {
        return std::nullopt;
    }
    return Decimal::parse({buffer, static_cast<std::size_t>(written - buffer)});
}

Decimal trimmed(Decimal value) {
    const auto wholeDigits = value.digits.size() - value.decimals;
    const auto lead = std::min(value.digits.find_first_not_of('0'), wholeDigits > 0 ? wholeDigits - 1 : 0);
    value.digits.erase(0, lead);
    return value;
}

// Adds `whole` (of either sign) at the point's place.
Decimal plusWhole(Decimal value, int whole) {
    // Both as integers of 10^-decimals: the whole number is written out with as many zeros.
    std::string other = std::to_string(std::abs(whole)) + std::string(value.decimals, '0');
    const auto width = std::max(value.digits.size(), other.size()) + 1;
    value.digits.insert(0, width - value.digits.size(), '0');
    other.insert(0, width - other.size(), '0');

    const bool subtract = value.negative != (whole < 0);
    const bool swap = subtract && value.digits < other;
    const std::string& larger = swap ? other : value.digits;
    const std::string& smaller = swap ? value.digits : other;
    std::string result(width, '0');
    int carry = 0;
    for (std::size_t i = width; i-- > 0;) {
        const int a = larger[i] - '0';
        const int b = smaller[i] - '0';
        int digit = subtract ? a - b - carry : a + b + carry;
        carry = subtract ? (digit < 0) : (digit > 9);
        digit += subtract ? (carry ? 10 : 0) : (carry ? -10 : 0);
        result[i] = static_cast<char>('0' + digit);
    }
    return trimmed({swap ? whole < 0 : value.negative, std::move(result), value.decimals});
}

} // namespace

std::optional<Decimal> Decimal::parse(std::string_view text) {
    Decimal result;
    if (text.size() > kLongestNumber) {
        return std::nullopt;
    }
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        result.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (text.empty() || !(isDigit(text.front()) || text.front() == '.')) {
        return std::nullopt;
    }
    if (text.find_first_of("eE") != std::string_view::npos) {
        auto number = parseWithExponent(text);
        if (number) {
            number->negative = result.negative;
        }
        return number;
    }
    const auto point = text.find('.');
    const auto whole = text.substr(0, point);
    const auto fraction = point == std::string_view::npos ? std::string_view{} : text.substr(point + 1);
    if (whole.empty() && fraction.empty()) {
        return std::nullopt;
    }
    if (!std::ranges::all_of(whole, isDigit) || !std::ranges::all_of(fraction, isDigit)) {
        return std::nullopt;
    }
    result.digits = whole.empty() ? "0" : std::string(whole);
    result.digits += fraction;
    result.decimals = fraction.size();
    return result;
}

std::string Decimal::text() const {
    const bool zero = digits.find_first_not_of('0') == std::string::npos;
    std::string result = negative && !zero ? "-" : "";
    result.append(digits, 0, digits.size() - decimals);
    if (decimals > 0) {
        result += '.';
        result.append(digits, digits.size() - decimals);
    }
    return result;
}

Decimal scaled(const Decimal& value, int factor, int offset) {
    std::string product(value.digits.size() + 4, '0'); // factors have at most four digits
    int carry = 0;
    for (std::size_t i = value.digits.size(); i-- > 0;) {
        carry += (value.digits[i] - '0') * factor;
        product[i + 4] = static_cast<char>('0' + carry % 10);
        carry /= 10;
    }
    for (std::size_t i = 4; i-- > 0; carry /= 10) {
        product[i] = static_cast<char>('0' + carry % 10);
    }
    return plusWhole({false, std::move(product), value.decimals}, offset);
}

Decimal unscaled(const Decimal& value, int divisor, int offset) {
    Decimal difference = plusWhole(value, -offset);
    if (difference.negative) {
        return {false, "0", 0};
    }
    const auto decimals = std::max(difference.decimals, kQuotientDecimals);
    difference.digits.append(decimals - difference.decimals, '0');
    int remainder = 0;
    for (char& digit : difference.digits) {
        remainder = remainder * 10 + (digit - '0');
        digit = static_cast<char>('0' + remainder / divisor);
        remainder %= divisor;
    }
    return {false, std::move(difference.digits), decimals};
}

} // namespace Parameters
