// Open parentheses are kept on a stack of our own: how deep a text nests them is bounded by its length alone.
#include "expression/Expression.h"

#include "notation/Numbers.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace Quilt {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\v' || c == '\r' || c == '\n' || c == '\x1A';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isNameByte(char c) {
    const char lower = static_cast<char>(c | 0x20);
    return (lower >= 'a' && lower <= 'z') || isDigit(c) || c == '$' || c == '.' || c == ':' || c == '_';
}

// What arithmetic is done in. Integers are checked after each step, so that none is beyond its type for
// longer than that; -2147483648 is a minus before a number which is one too large.
template <class Number>
using Wide = std::conditional_t<std::is_integral_v<Number>, std::int64_t, Number>;

template <class Number>
Wide<Number> checked(Wide<Number> value) {
    if constexpr (std::is_integral_v<Number>) {
        if (value < std::numeric_limits<Number>::min() || value > std::numeric_limits<Number>::max()) {
            throw ExpressionError("Integer overflow");
        }
    }
    return value;
}

template <class Number>
Wide<Number> combine(char operation, Wide<Number> left, Wide<Number> right) {
    switch (operation) {
    case '+':
        return checked<Number>(left + right);
    case '-':
        return checked<Number>(left - right);
    case '*':
        return checked<Number>(left * right);
    case '/':
        if constexpr (std::is_integral_v<Number>) {
            if (right == 0) {
                throw ExpressionError("Division by zero");
            }
        }
        return checked<Number>(left / right);
    default:
        return right; // there is no left operand yet
    }
}

// One level of parentheses: SUM sumOperation PRODUCT productOperation -operand. An operation of 0 means that
// its left side is still empty.
template <class Number>
struct Level {
    Wide<Number> sum{};
    Wide<Number> product{};
    char sumOperation = 0;
    char productOperation = 0;
    bool negative = false;

    void take(Wide<Number> operand) {
        operand = checked<Number>(negative ? -operand : operand);
        negative = false;
        product = combine<Number>(productOperation, product, operand);
    }
    Wide<Number> total() const { return combine<Number>(sumOperation, sum, product); }
};

template <class Number>
class Evaluation {
public:
    Evaluation(std::string_view text, const Symbols<Number>& symbols) : text_(text), symbols_(symbols) {}

    std::optional<Number> run() {
        skipBlanks();
        if (atEnd()) {
            return std::nullopt;
        }
        for (;;) {
            readOperand();
            while (!readOperator()) {
                const auto value = levels_.back().total();
                if (levels_.size() == 1) {
                    return static_cast<Number>(value);
                }
                if (atEnd() || text_.front() != ')') {
                    throw ExpressionError("Expected ')'");
                }
                step();
                levels_.pop_back();
                levels_.back().take(value);
            }
        }
    }

    std::string_view rest() const { return text_; }

private:
    bool atEnd() const { return text_.empty() || text_.front() == '\0'; }
    void step() { text_.remove_prefix(1); }
    void skipBlanks() {
        while (!text_.empty() && isBlank(text_.front())) {
            step();
        }
    }

    // Signs and parentheses up to a number or a name, and that.
    void readOperand() {
        for (;;) {
            skipBlanks();
            if (atEnd()) {
                throw ExpressionError("Unexpected end of string");
            }
            const char c = text_.front();
            if (c == '-') {
                step();
                levels_.back().negative = !levels_.back().negative;
            } else if (c == '(') {
                step();
                levels_.emplace_back();
            } else {
                levels_.back().take(c == '.' || isDigit(c) ? readNumber() : readSymbol());
                return;
            }
        }
    }

    // False where the level ends: at anything that is no operator.
    bool readOperator() {
        skipBlanks();
        if (atEnd()) {
            return false;
        }
        const char c = text_.front();
        Level<Number>& level = levels_.back();
        if (c == '*' || c == '/') {
            level.productOperation = c;
        } else if (c == '+' || c == '-') {
            level.sum = level.total();
            level.sumOperation = c;
            level.productOperation = 0;
        } else {
            return false;
        }
        step();
        return true;
    }

    Wide<Number> readNumber() {
        const char* const begin = text_.data();
        Wide<Number> value{};
        const auto [end, error] = std::from_chars(begin, begin + text_.size(), value);
        if (error == std::errc::invalid_argument) {
            throw ExpressionError("Syntax error");
        }
        const std::string_view digits = text_.substr(0, static_cast<std::size_t>(end - begin));
        text_.remove_prefix(digits.size());
        if (error == std::errc::result_out_of_range) {
            if constexpr (std::is_integral_v<Number>) {
                throw ExpressionError("Integer overflow");
            } else if constexpr (std::is_same_v<Number, float>) {
                value = Stackbrace::toFloat32(digits);
            } else {
                value = Stackbrace::toFloat64(digits);
            }
        }
        return value;
    }

    Wide<Number> readSymbol() {
        std::size_t size = 0;
        while (size < text_.size() && isNameByte(text_[size])) {
            ++size;
        }
        if (size == 0) {
            throw ExpressionError("Syntax error");
        }
        const std::string_view name = text_.substr(0, size);
        const std::optional<Number> value = symbols_ ? symbols_(name) : std::nullopt;
        if (!value) {
            throw ExpressionError("Undefined symbol: " + std::string(name));
        }
        text_.remove_prefix(size);
        return *value;
    }

    std::string_view text_;
    const Symbols<Number>& symbols_;
    std::vector<Level<Number>> levels_ = std::vector<Level<Number>>(1);
};

} // namespace

template <class Number>
void evaluate(std::string_view& text, Number& result, const Symbols<Number>& symbols) {
    Evaluation<Number> evaluation(text, symbols);
    if (const auto value = evaluation.run()) {
        result = *value;
    }
    text = evaluation.rest();
}

template <class Number>
Number evaluateAll(std::string_view text, Number whenBlank, const Symbols<Number>& symbols) {
    evaluate(text, whenBlank, symbols);
    if (!text.empty() && text.front() != '\0') {
        throw ExpressionError("Unexpected text: " + std::string(text));
    }
    return whenBlank;
}

template void evaluate(std::string_view&, std::int32_t&, const Symbols<std::int32_t>&);
template void evaluate(std::string_view&, float&, const Symbols<float>&);
template void evaluate(std::string_view&, double&, const Symbols<double>&);
template std::int32_t evaluateAll(std::string_view, std::int32_t, const Symbols<std::int32_t>&);
template float evaluateAll(std::string_view, float, const Symbols<float>&);
template double evaluateAll(std::string_view, double, const Symbols<double>&);

} // namespace Quilt
