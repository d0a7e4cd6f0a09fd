// Arithmetic on numbers and named symbols, as layouts write rectangle components: "w-35", "(h/2)". One
// evaluator for three number types: std::int32_t, float and double.
//
// * and / bind tighter than + and -, all four group from the left, and a minus before an operand binds
// tightest. Integers divide towards zero. Numbers are decimal; those of the float types may have a fraction
// and an exponent.
#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace Quilt {

class ExpressionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The value of a name, or nullopt for a name that is unknown.
template <class Number>
using Symbols = std::function<std::optional<Number>(std::string_view name)>;

// Reads one expression at the front of `text` and moves `text` behind it and the blanks that follow. A blank
// text leaves `result` as it was; so does an error, which is thrown as ExpressionError.
template <class Number>
void evaluate(std::string_view& text, Number& result, const Symbols<Number>& symbols);

// The value of a text that is one expression and nothing else, or `whenBlank`. What follows an expression is
// refused with "Unexpected text: REST".
template <class Number>
Number evaluateAll(std::string_view text, Number whenBlank, const Symbols<Number>& symbols);

} // namespace Quilt
