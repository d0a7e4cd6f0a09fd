// Reads bottom-up: primaries first, then what may follow a value, with the levels of the operators in one
// place.
#include "zekt/Expression.h"

#include "zekt/Escapes.h"
#include "zekt/Expansion.h"
#include "zekt/Functions.h"
#include "zekt/Lexical.h"
#include "zekt/NumberText.h"
#include "zekt/Variables.h"

#include <algorithm>
#include <numbers>

namespace ZEKT {

Expression::Expression() = default;
Expression::~Expression() = default;

namespace {

// How tightly operators bind.
enum Level : int {
    anything = 0,
    conditional = 1,
    spacedJoin = 2,
    logic = 3,
    comparison = 4,
    sum = 5,
    product = 6,
    prefix = 7,
    remainder = 8,
    exponentiation = 9,
    substring = 10, // of what "$" reads, not of its name
    variable = 11,
    tightJoin = 12,
    application = 13,
};

struct Infix {
    std::string_view sign;
    Level level;
    Operation operation;
};

// Longer signs first.
constexpr Infix kInfixes[] = {
    {"**", exponentiation, Operation::power},
    {"%", remainder, Operation::modulo},
    {"*", product, Operation::multiply},
    {"/", product, Operation::divide},
    {"+", sum, Operation::add},
    {"-", sum, Operation::subtract},
    {"==", comparison, Operation::equal},
    {"!=", comparison, Operation::notEqual},
    {"<=", comparison, Operation::lessOrEqual},
    {">=", comparison, Operation::greaterOrEqual},
    {"<", comparison, Operation::less},
    {">", comparison, Operation::greater},
    {"&&", logic, Operation::logicalAnd},
    {"||", logic, Operation::logicalOr},
};

constexpr std::uint32_t kOpenTarget = 0xFFFFFFFF;

class Parser {
public:
    Parser(std::string_view text, std::size_t at, Variables& variables, Expression& result)
        : text_(text), at_(at), variables_(variables), result_(result) {}

    // Up to the closing brace, or to the end.
    std::size_t parse(bool braced) {
        try {
            expression(anything, false);
            skipBlanks();
            if (braced ? !accept("}") : at_ < text_.size()) {
                throw SyntaxException("Syntax error");
            }
        } catch (const Exception& error) {
            fail(error);
        }
        return at_;
    }

private:
    // A branch that is not taken is still read: its fault is found either way.
    void fail(const Exception& error) {
        const auto here = static_cast<std::uint32_t>(result_.steps.size());
        for (Step& step : result_.steps) {
            if (step.index == kOpenTarget) {
                step.index = here;
            }
        }
        emit(Operation::raise, 0);
        result_.faults.emplace_back(error);
        at_ = text_.size();
    }

    bool atEnd() const { return at_ == text_.size(); }
    char next() const { return atEnd() ? '\0' : text_[at_]; }
    void skipBlanks() { at_ = Lexical::skipBlanks(text_, at_); }
    bool accept(std::string_view sign) {
        if (!text_.substr(at_).starts_with(sign)) {
            return false;
        }
        at_ += sign.size();
        return true;
    }
    void expect(std::string_view sign, const char* message) {
        skipBlanks();
        if (!accept(sign)) {
            throw SyntaxException(message);
        }
    }

    Step& emit(Operation operation, int pushes, std::uint32_t index = 0) {
        height_ += pushes;
        result_.stackSize = std::max(result_.stackSize, static_cast<std::size_t>(std::max(height_, 0)));
        result_.steps.push_back({operation, index, {}});
        return result_.steps.back();
    }
    std::size_t emitJump(Operation operation) {
        emit(operation, operation == Operation::jumpUnless ? -1 : 0, kOpenTarget);
        return result_.steps.size() - 1;
    }
    void landHere(std::size_t jump) {
        result_.steps[jump].index = static_cast<std::uint32_t>(result_.steps.size());
    }
    void pushNumber(double number) { emit(Operation::pushNumber, 1).number = number; }
    void pushString(std::string text) {
        result_.strings.push_back(std::make_unique<const std::string>(std::move(text)));
        emit(Operation::pushString, 1, static_cast<std::uint32_t>(result_.strings.size() - 1));
    }

    bool beginsPrimary() const {
        const char c = next();
        return !atEnd() && (Lexical::isWord(c) || c == '"' || c == '[' || c == '(' || c == '\\' || c == '$');
    }

    // `asName`: bare words are text even if they are names of functions.
    void primary(bool asName) {
        skipBlanks();
        if (atEnd()) {
            throw SyntaxException("Unexpected end");
        }
        switch (next()) {
        case '(':
            ++at_;
            expression(anything, false);
            expect(")", "Missing )");
            return;
        case '"':
            quoted();
            return;
        case '[':
            bracketed();
            return;
        case '\\':
            escape();
            return;
        case '$':
            variableRead();
            return;
        case '!':
            prefixed(Operation::logicalNot);
            return;
        case '+':
            prefixed(Operation::identity);
            return;
        case '-':
            prefixed(Operation::negate);
            return;
        default:
            word(asName);
        }
    }

    void prefixed(Operation operation) {
        ++at_;
        expression(prefix, false);
        emit(operation, 0);
    }

    void quoted() {
        const std::size_t end = Lexical::quotedEnd(text_, at_);
        pushString(expressionString(Lexical::inside(text_.substr(at_, end - at_))));
        at_ = end;
    }

    void bracketed() {
        const std::size_t end = Lexical::bracketedEnd(text_, at_);
        result_.expansions.push_back(
            std::make_unique<Expansion>(Lexical::inside(text_.substr(at_, end - at_))));
        emit(Operation::expand, 1, static_cast<std::uint32_t>(result_.expansions.size() - 1));
        at_ = end;
    }

    void escape() {
        const std::size_t end = readEscape(text_, at_).end;
        pushString(expressionString(text_.substr(at_, end - at_)));
        at_ = end;
    }

    void variableRead() {
        ++at_;
        const std::size_t first = result_.steps.size();
        expression(tightJoin, true);
        if (result_.steps.size() == first + 1 && result_.steps[first].operation == Operation::pushString) {
            Symbol& symbol = variables_.symbol(*result_.strings.back());
            result_.strings.pop_back();
            result_.steps.pop_back();
            --height_;
            emit(Operation::load, 1).symbol = &symbol;
        } else {
            emit(Operation::loadNamed, 0);
        }
    }

    void word(bool asName) {
        const std::size_t length = asName ? 0 : numberLength(text_.substr(at_));
        if (length > 0) {
            pushNumber(toNumber(text_.substr(at_, length)));
            at_ += length;
            return;
        }
        const std::size_t first = at_;
        while (Lexical::isWord(next())) {
            ++at_;
        }
        const std::string_view name = text_.substr(first, at_ - first);
        if (name.empty()) {
            throw SyntaxException("Syntax error");
        }
        if (asName) {
            pushString(std::string(name));
        } else if (name == "pi") {
            pushNumber(std::numbers::pi);
        } else if (name == "len") {
            expression(application, false);
            emit(Operation::length, 0);
        } else if (name == "def") {
            expression(application, true);
            emit(Operation::defined, 0);
        } else if (const auto function = findFunction(name)) {
            expression(application, false);
            emit(Operation::function, 0, *function);
        } else {
            pushString(std::string(name));
        }
    }

    const Infix* findInfix() const {
        const std::string_view rest = text_.substr(at_);
        for (const Infix& infix : kInfixes) {
            if (rest.starts_with(infix.sign)) {
                return &infix;
            }
        }
        if (next() == '=' || next() == '!') {
            throw SyntaxException("Syntax error");
        }
        return nullptr;
    }

    // A value and all operators behind it that bind at `level` or tighter.
    void expression(int level, bool asName) {
        if (++depth_ > kExpressionDepth) {
            throw RunTimeException("Recursion limit reached");
        }
        primary(asName);
        std::size_t before = at_;
        while (follow(level, asName)) {
            before = at_;
        }
        at_ = before; // white space there may be the operator of a looser level
        --depth_;
    }

    bool follow(int level, bool asName) {
        const std::size_t end = at_;
        skipBlanks();
        const bool spaced = at_ > end;
        if (beginsPrimary()) {
            const Level join = spaced ? spacedJoin : tightJoin;
            if (join < level) {
                return false;
            }
            expression(join + 1, asName && !spaced);
            emit(spaced ? Operation::joinWithSpace : Operation::join, -1);
            return true;
        }
        if (next() == '{') {
            return substring >= level && (substringOf(), true);
        }
        if (next() == '?') {
            return conditional >= level && (branches(), true);
        }
        const Infix* const infix = findInfix();
        if (infix == nullptr || infix->level < level) {
            return false;
        }
        at_ += infix->sign.size();
        expression(infix->level + 1, false);
        emit(infix->operation, -1);
        return true;
    }

    void substringOf() {
        ++at_;
        skipBlanks();
        if (next() == '}') {
            throw SyntaxException("Syntax error");
        }
        const bool first = next() != ':';
        if (first) {
            expression(anything, false);
            skipBlanks();
        }
        const bool colon = accept(":");
        skipBlanks();
        const bool count = colon && next() != '}';
        if (count) {
            expression(anything, false);
        }
        if (!first && !count) {
            throw SyntaxException("Syntax error");
        }
        expect("}", "Missing }");
        if (first && count) {
            emit(Operation::slice, -2);
        } else {
            emit(count ? Operation::firstOnes : colon ? Operation::tail : Operation::characterAt, -1);
        }
    }

    void branches() {
        ++at_;
        const std::size_t unless = emitJump(Operation::jumpUnless);
        expression(anything, false);
        expect(":", "Expected :");
        const std::size_t done = emitJump(Operation::jump);
        --height_;
        landHere(unless);
        expression(conditional, false);
        landHere(done);
    }

    std::string_view text_;
    std::size_t at_;
    Variables& variables_;
    Expression& result_;
    int depth_ = 0;
    int height_ = 0;
};

} // namespace

std::size_t parseExpression(std::string_view text, std::size_t at, Variables& variables, Expression& result) {
    return Parser(text, at, variables, result).parse(true);
}

void parseWholeExpression(std::string_view text, Variables& variables, Expression& result) {
    Parser(text, 0, variables, result).parse(false);
}

} // namespace ZEKT
