// Random expressions, against an evaluator that computes while it reads, keeps nothing and knows numbers only
// as what the C library makes of them: same value, or same failure.
#include "ScriptRun.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>

namespace {

struct Value {
    std::string text;
    bool exact = false; // number holds more digits than the text
    double number = 0;
};

class Reference {
public:
    explicit Reference(const std::string& text) : text_(text) {}

    std::string evaluate() {
        const Value value = expression(0, true, false);
        blanks();
        if (at_ < text_.size()) {
            throw ZEKT::SyntaxException("Syntax error");
        }
        return value.text;
    }

    static std::string variable(const std::string& name) {
        static const std::map<std::string, std::string> variables = {
            {"x", "1.50"}, {"s", "hello"}, {"t", "yes"}, {"xs", "x"}, {"2", "-7"}, {"floor", "3"}};
        const auto found = variables.find(name);
        return found == variables.end() ? "?" : found->second;
    }

private:
    static Value number(double value) {
        if (std::isinf(value)) {
            throw ZEKT::RunTimeException("Number overflow");
        }
        char text[40];
        std::snprintf(text, sizeof text, "%.13g", value == 0 ? 0.0 : value);
        return {text, true, value};
    }
    static bool isNumber(const Value& value, double& number) {
        char* end = nullptr;
        number = value.exact ? value.number : std::strtod(value.text.c_str(), &end);
        const bool read = value.exact || (!value.text.empty() && *end == '\0' &&
                                          value.text.find_first_of("xXiInN ") == std::string::npos);
        if (read && std::isinf(number)) {
            throw ZEKT::RunTimeException("Number overflow");
        }
        return read;
    }
    static double toNumber(const Value& value) {
        double number = 0;
        if (!isNumber(value, number)) {
            throw ZEKT::RunTimeException("Invalid number: " + value.text);
        }
        return number;
    }
    static Value boolean(bool value) { return {value ? "yes" : "no"}; }
    static bool toBoolean(const Value& value) {
        double number = 0;
        if (value.text == "yes" || value.text == "no") {
            return value.text == "yes";
        }
        if (!isNumber(value, number)) {
            throw ZEKT::RunTimeException("Invalid boolean (should be 'yes' or 'no'): " + value.text);
        }
        return number != 0;
    }
    static int compare(const Value& left, const Value& right) {
        double a = 0;
        double b = 0;
        const bool first = isNumber(left, a);
        const bool second = isNumber(right, b);
        if (first && second) {
            return std::abs(a - b) <= 1e-13 * std::max(std::abs(a), std::abs(b)) ? 0 : a < b ? -1 : 1;
        }
        return first ? -1 : second ? 1 : left.text.compare(right.text);
    }

    void blanks() {
        while (at_ < text_.size() && text_[at_] == ' ') {
            ++at_;
        }
    }
    char next() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    static bool isWord(char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.';
    }

    Value expression(int level, bool live, bool asName) {
        Value value = primary(live, asName);
        for (;;) {
            const std::size_t end = at_;
            blanks();
            const bool spaced = at_ > end;
            if (!operation(level, value, live, asName, spaced)) {
                at_ = end;
                return value;
            }
        }
    }

    Value primary(bool live, bool asName) {
        blanks();
        const char c = next();
        if (c == '\0') {
            throw ZEKT::SyntaxException("Unexpected end");
        }
        if (c == '(') {
            ++at_;
            const Value value = expression(0, live, false);
            blanks();
            if (next() != ')') {
                throw ZEKT::SyntaxException("Missing )");
            }
            ++at_;
            return value;
        }
        if (c == '$') {
            ++at_;
            const std::string name = expression(12, live, true).text;
            if (live && variable(name) == "?") {
                throw ZEKT::RunTimeException("Variable " + name + " does not exist");
            }
            return {variable(name)};
        }
        if (c == '!' || c == '-' || c == '+') {
            ++at_;
            const Value value = expression(7, live, false);
            return !live      ? value
                   : c == '!' ? boolean(!toBoolean(value))
                              : number(c == '-' ? -toNumber(value) : toNumber(value));
        }
        if (!isWord(c)) {
            throw ZEKT::SyntaxException("Syntax error");
        }
        return word(live, asName);
    }

    Value word(bool live, bool asName) {
        if (!asName && (std::isdigit(next()) != 0 || (next() == '.' && std::isdigit(text_[at_ + 1]) != 0))) {
            char* end = nullptr;
            const double value = std::strtod(text_.c_str() + at_, &end);
            at_ = static_cast<std::size_t>(end - text_.c_str());
            return number(value);
        }
        const std::size_t first = at_;
        while (isWord(next())) {
            ++at_;
        }
        const std::string name = text_.substr(first, at_ - first);
        if (asName) {
            return {name};
        }
        if (name == "pi") {
            return number(3.141592653589793);
        }
        if (name != "floor" && name != "sqrt" && name != "len" && name != "def") {
            return {name};
        }
        const Value operand = expression(13, live, name == "def");
        if (!live) {
            return {};
        }
        if (name == "len") {
            return number(static_cast<double>(operand.text.size()));
        }
        if (name == "def") {
            return boolean(variable(operand.text) != "?");
        }
        const double value = toNumber(operand);
        if (name == "sqrt" && value < 0) {
            throw ZEKT::RunTimeException("Math error (sqrt of negative)");
        }
        return number(name == "sqrt" ? std::sqrt(value) : std::floor(value));
    }

    bool operation(int level, Value& value, bool live, bool asName, bool spaced) {
        const char c = next();
        const char second = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
        if (isWord(c) || c == '(' || c == '$') {
            const int join = spaced ? 2 : 12;
            if (join < level) {
                return false;
            }
            const Value right = expression(join + 1, live, asName && !spaced);
            value = {value.text + (spaced ? " " : "") + right.text};
            return true;
        }
        if (c == '?') {
            if (level > 1) {
                return false;
            }
            ++at_;
            const bool chosen = live && toBoolean(value);
            const Value first = expression(0, live && chosen, false);
            blanks();
            if (next() != ':') {
                throw ZEKT::SyntaxException("Expected :");
            }
            ++at_;
            const Value other = expression(1, live && !chosen, false);
            value = chosen ? first : other;
            return true;
        }
        if (c == '{') {
            return level <= 10 && (substring(value, live), true);
        }
        if ((c == '=' || c == '!') && second != '=') {
            throw ZEKT::SyntaxException("Syntax error");
        }
        const std::string pair{c, second};
        int own = pair == "**" ? 9 : c == '%' ? 8 : c == '*' || c == '/' ? 6 : c == '+' || c == '-' ? 5 : 0;
        own = c == '<' || c == '>' || c == '=' || c == '!' ? 4 : pair == "&&" || pair == "||" ? 3 : own;
        if (own == 0 || own < level) {
            return false;
        }
        at_ += own == 9 || own == 3 || (own == 4 && second == '=') ? 2 : 1;
        const Value right = expression(own + 1, live, false);
        if (live) {
            value = binary(own, c, own == 4 && second == '=', value, right);
        }
        return true;
    }

    static Value binary(int level, char c, bool equal, const Value& left, const Value& right) {
        if (level == 4) {
            const int order = compare(left, right);
            const bool holds = c == '<' ? order < 0 : c == '>' ? order > 0 : c == '!' ? order != 0 : false;
            return boolean(holds || (equal && c != '!' && order == 0));
        }
        if (level == 3) {
            const bool first = toBoolean(left);
            const bool second = toBoolean(right);
            return boolean(c == '&' ? first && second : first || second);
        }
        const double a = toNumber(left);
        const double b = toNumber(right);
        if (b == 0 && (c == '/' || c == '%')) {
            throw ZEKT::RunTimeException(c == '/' ? "Division by zero" : "Modulo by zero");
        }
        errno = 0;
        const double power = level == 9 ? std::pow(a, b) : 0;
        if (!std::isinf(power) && errno != 0) {
            throw ZEKT::RunTimeException("Math error");
        }
        return number(level == 9 ? power
                      : c == '*' ? a * b
                      : c == '/' ? a / b
                      : c == '%' ? std::fmod(a, b)
                      : c == '+' ? a + b
                                 : a - b);
    }

    void substring(Value& value, bool live) {
        ++at_;
        blanks();
        Value first{"0"};
        Value count{"1"};
        const bool hasFirst = next() != ':';
        if (next() == '}') {
            throw ZEKT::SyntaxException("Syntax error");
        }
        if (hasFirst) {
            first = expression(0, live, false);
            blanks();
        }
        if (next() == ':') {
            ++at_;
            blanks();
            if (next() != '}') {
                count = expression(0, live, false);
            } else if (!hasFirst) {
                throw ZEKT::SyntaxException("Syntax error");
            } else {
                count = {"1e9"};
            }
        }
        blanks();
        if (next() != '}') {
            throw ZEKT::SyntaxException("Missing }");
        }
        ++at_;
        if (live) {
            const double size = static_cast<double>(value.text.size());
            const double begin = std::min(size, std::max(0.0, std::floor(toNumber(first))));
            const double length = std::max(0.0, std::min(std::floor(toNumber(count)), size));
            value = {value.text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(length))};
        }
    }

    const std::string& text_;
    std::size_t at_ = 0;
};

std::string outcome(const std::function<std::string()>& evaluate) {
    try {
        return evaluate();
    } catch (const ZEKT::Exception& error) {
        return std::string(error.className()).append(": ").append(error.what());
    }
}

} // namespace

TEST(Expression, randomOnesAreWhatAPlainReaderComputes) {
    const std::string tokens[] = {
        "1",   "0", "2.5", ".5",     "1e2",   "a",    "yes",  "no", "$x",    "$s",  "$t",    "$2",  "$",
        "$no", "+", "-",   "*",      "/",     "%",    "**",   "==", "!=",    "<",   "<=",    ">",   "&&",
        "||",  "!", "?",   ":",      "(",     ")",    "{",    "}",  "=",     " ",   " ",     " ",   "?",
        ":",   "(", ")",   "floor ", "sqrt(", "len ", "def ", "pi", "{1:2}", "{0}", "floor", "$$xs"};
    ScriptRun::Host host;
    ZEKT::Interpreter interpreter(host);
    for (const char* name : {"x", "s", "t", "xs", "2", "floor"}) {
        interpreter.globals().set(name, Reference::variable(name));
    }
    std::mt19937 random(7);
    int values = 0;
    for (int round = 0; round < 200000; ++round) {
        std::string text;
        for (std::size_t length = random() % 12; length > 0; --length) {
            // every other token a value, so that many are well formed
            text +=
                tokens[length % 2 == 0 || random() % 4 == 0 ? random() % std::size(tokens) : random() % 12];
        }
        if (text.find("//") != std::string::npos || text.find("/*") != std::string::npos) {
            continue; // comments
        }
        const std::string expected = outcome([&] { return Reference(text).evaluate(); });
        ASSERT_EQ(outcome([&] { return interpreter.globals().evaluate(text); }), expected) << text;
        values += expected.starts_with("ZEKT") ? 0 : 1;
    }
    EXPECT_GT(values, 20000);
}
