// The inside of { } as a program for a machine with a stack. Operations stand in the order in which a reader
// that evaluates as it goes would carry them out, and one that raises a fault stands where that reader would
// give up: so errors come in the same order, those in branches that are not taken included.
#pragma once

#include "zekt/Fault.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ZEKT {

class Variables;
struct Expansion;
struct Symbol;

enum class Operation : std::uint8_t {
    pushNumber, // number
    pushString, // string
    load,       // symbol
    loadNamed,  // the variable whose name is on the stack
    expand,     // expansion: the inside of brackets
    power,
    modulo,
    logicalNot,
    identity,
    negate,
    multiply,
    divide,
    add,
    subtract,
    equal,
    notEqual,
    less,
    lessOrEqual,
    greater,
    greaterOrEqual,
    logicalAnd,
    logicalOr,
    join,          // without, and
    joinWithSpace, // with a space between
    jump,          // target
    jumpUnless,    // target; takes the condition
    characterAt,   // text{i}
    slice,         // text{i:n}
    firstOnes,     // text{:n}
    tail,          // text{i:}
    function,      // index into the function table
    length,
    defined,
    raise, // fault
};

struct Step {
    Operation operation;
    std::uint32_t index = 0; // of a function, a step to jump to, or into the strings, expansions or faults
    union {
        double number = 0;
        Symbol* symbol;
    };
};

struct Expression {
    Expression();
    ~Expression();

    std::vector<Step> steps;
    std::vector<std::unique_ptr<const std::string>> strings;
    std::vector<std::unique_ptr<Expansion>> expansions;
    std::vector<Fault> faults; // one at most: parsing ends there
    std::size_t stackSize = 1;
};

// Deeper nesting of parentheses, prefixes and branches than this is "Recursion limit reached".
inline constexpr int kExpressionDepth = 200;

// Parses from behind the opening brace. Returns the offset behind the closing one, or the end of the text if
// the expression ends in a fault.
std::size_t parseExpression(std::string_view text, std::size_t at, Variables& variables, Expression& result);

// The same for a text that is the inside and nothing else.
void parseWholeExpression(std::string_view text, Variables& variables, Expression& result);

} // namespace ZEKT
