// Evaluates any text in all three number types, and compares with an evaluation by plain recursion.
#include "expression/Expression.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

namespace {

template <class Number>
std::optional<Number> symbol(std::string_view name) {
    if (name == "least") {
        return std::numeric_limits<Number>::lowest();
    }
    return name.size() == 1 ? std::optional(static_cast<Number>(name.front() - 'm')) : std::nullopt;
}

struct Refused {};

template <class Number>
class Recursion {
public:
    // Integers as wide as no sum or product of two exceeds; each step has to fit the type.
    using Wide = std::conditional_t<std::is_integral_v<Number>, std::int64_t, Number>;

    explicit Recursion(std::string_view text) : text_(text) {}

    bool blank() {
        skip();
        return peek() == 0;
    }

    Wide sum() {
        Wide left = product();
        for (char c = peek(); c == '+' || c == '-'; c = peek()) {
            text_.remove_prefix(1);
            const Wide right = product();
            left = fit(c == '+' ? left + right : left - right);
        }
        return left;
    }

private:
    char peek() const { return text_.empty() ? '\0' : text_.front(); }

    void skip() {
        while (peek() != 0 && std::strchr(" \t\v\r\n\x1A", peek()) != nullptr) {
            text_.remove_prefix(1);
        }
    }

    static Wide fit(Wide value) {
        if constexpr (std::is_integral_v<Number>) {
            if (value != static_cast<Number>(value)) {
                throw Refused{};
            }
        }
        return value;
    }

    Wide product() {
        Wide left = fit(operand());
        for (char c = peek(); c == '*' || c == '/'; c = peek()) {
            text_.remove_prefix(1);
            const Wide right = fit(operand());
            if (c == '/' && std::is_integral_v<Number> && right == 0) {
                throw Refused{};
            }
            left = fit(c == '*' ? left * right : left / right);
        }
        return left;
    }

    Wide operand() {
        skip();
        Wide value{};
        if (peek() == '(') {
            text_.remove_prefix(1);
            value = sum();
            if (peek() != ')') {
                throw Refused{};
            }
            text_.remove_prefix(1);
        } else if (peek() == '-') {
            text_.remove_prefix(1);
            value = -operand();
        } else if (peek() == '.' || (peek() >= '0' && peek() <= '9')) {
            const auto [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), value);
            if (error != std::errc{}) {
                throw Refused{};
            }
            text_.remove_prefix(static_cast<std::size_t>(end - text_.data()));
        } else {
            const std::size_t size = std::min(
                text_.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789$.:_"),
                text_.size());
            const auto known = symbol<Number>(text_.substr(0, size));
            if (!known) {
                throw Refused{};
            }
            value = *known;
            text_.remove_prefix(size);
        }
        skip();
        return value;
    }

    std::string_view text_;
};

template <class Number>
std::optional<Number> plainly(std::string_view text) {
    try {
        Recursion<Number> recursion(text);
        return recursion.blank() ? Number{99} : static_cast<Number>(recursion.sum());
    } catch (const Refused&) {
        return std::nullopt;
    }
}

template <class Number>
std::optional<Number> evaluated(std::string_view text) {
    const std::string_view whole = text;
    try {
        Number result{99};
        Quilt::evaluate<Number>(text, result, symbol<Number>);
        return result;
    } catch (const Quilt::ExpressionError& error) {
        if (*error.what() == '\0' || text != whole) {
            std::abort();
        }
        return std::nullopt;
    }
}

template <class Number>
void compare(std::string_view text) {
    const auto expected = plainly<Number>(text);
    const auto found = evaluated<Number>(text);
    const bool bothNaN = expected && found && *expected != *expected && *found != *found;
    if (expected != found && !bothNaN) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (size < 2000) { // as deep as recursion may go
        compare<std::int32_t>(text);
    }
    if (text.find_first_of("eE") == std::string_view::npos && size < 200) { // no number is beyond the type
        compare<double>(text);
    }
    evaluated<float>(text);
    return 0;
}
