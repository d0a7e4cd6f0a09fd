// The parsed form of a text that is to be expanded: literal stretches, variables and expressions. It is
// parsed when first needed and refers to its source, which has to outlive it.
#pragma once

#include "zekt/Expression.h"
#include "zekt/Fault.h"
#include "zekt/Variables.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZEKT {

struct Piece {
    enum class Kind : std::uint8_t { literal, variable, expression, fault };

    Kind kind = Kind::literal;
    Symbol* symbol = nullptr;
    std::string literal;
    std::unique_ptr<Expression> expression;
    std::optional<Fault> fault; // the last piece, if any: parsing ends there
};

struct Expansion {
    Expansion() = default;
    explicit Expansion(std::string_view text) : source(text) {}

    // Of a parsed one: the text, if it is the same whatever the variables are.
    bool isLiteral() const {
        return pieces.empty() || (pieces.size() == 1 && pieces[0].kind == Piece::Kind::literal);
    }
    std::string_view literal() const { return pieces.empty() ? std::string_view() : pieces[0].literal; }

    std::string_view source;
    bool parsed = false;
    std::vector<Piece> pieces;
};

// All of the source.
void parseExpansion(Expansion& expansion, Variables& variables);

// One word of `text` from `at`, which moves behind it. What stands before a colon goes to `label`.
struct WordExpansions {
    std::optional<Expansion> label;
    Expansion value;
};
WordExpansions parseWord(std::string_view text, std::size_t& at, Variables& variables);

} // namespace ZEKT
