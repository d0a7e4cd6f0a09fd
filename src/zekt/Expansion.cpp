#include "zekt/Expansion.h"

#include "zekt/Lexical.h"

namespace ZEKT {

namespace {

class Parser {
public:
    Parser(std::string_view text, std::size_t at, Variables& variables)
        : text_(text), at_(at), variables_(variables) {}

    void parseAll(Expansion& result) {
        guarded(result, [&] {
            at_ = Lexical::skipBlanks(text_, at_);
            while (at_ < text_.size()) {
                if (blanksHere()) {
                    at_ = Lexical::skipBlanks(text_, at_);
                    appendLiteral(result, at_ < text_.size() ? " " : "");
                } else {
                    unit(result);
                }
            }
        });
    }

    std::size_t parseWord(WordExpansions& word) {
        word.value.parsed = true;
        guarded(word.value, [&] {
            while (at_ < text_.size() && !blanksHere()) {
                if (text_[at_] == ':' && !word.label) {
                    word.label = std::move(word.value);
                    word.value = {};
                    word.value.parsed = true;
                    ++at_;
                } else {
                    unit(word.value);
                }
            }
        });
        return at_;
    }

private:
    template <typename Parse>
    void guarded(Expansion& result, Parse parse) {
        try {
            parse();
        } catch (const Exception& error) {
            Piece& piece = result.pieces.emplace_back();
            piece.kind = Piece::Kind::fault;
            piece.fault.emplace(error);
            at_ = text_.size();
        }
    }

    bool blanksHere() const { return Lexical::isSpace(text_[at_]) || Lexical::beginsComment(text_, at_); }

    static void appendLiteral(Expansion& result, std::string_view text) {
        if (text.empty()) {
            return;
        }
        if (result.pieces.empty() || result.pieces.back().kind != Piece::Kind::literal) {
            result.pieces.emplace_back();
        }
        result.pieces.back().literal.append(text);
    }

    void copyTo(Expansion& result, std::size_t end) {
        appendLiteral(result, text_.substr(at_, end - at_));
        at_ = end;
    }

    void unit(Expansion& result) {
        switch (text_[at_]) {
        case '"':
            return copyTo(result, Lexical::quotedEnd(text_, at_));
        case '[':
            return copyTo(result, Lexical::bracketedEnd(text_, at_));
        case '\\':
            return copyTo(result, Lexical::escapeEnd(text_, at_));
        case '$':
            return variable(result);
        case '{': {
            Piece& piece = result.pieces.emplace_back();
            piece.kind = Piece::Kind::expression;
            piece.expression = std::make_unique<Expression>();
            at_ = parseExpression(text_, at_ + 1, variables_, *piece.expression);
            return;
        }
        default:
            return copyTo(result, at_ + 1);
        }
    }

    void variable(Expansion& result) {
        const std::size_t first = ++at_;
        while (at_ < text_.size() && Lexical::isName(text_[at_])) {
            ++at_;
        }
        if (at_ == first) {
            throw SyntaxException("Syntax error");
        }
        Piece& piece = result.pieces.emplace_back();
        piece.kind = Piece::Kind::variable;
        piece.symbol = &variables_.symbol(text_.substr(first, at_ - first));
    }

    std::string_view text_;
    std::size_t at_;
    Variables& variables_;
};

} // namespace

void parseExpansion(Expansion& expansion, Variables& variables) {
    expansion.parsed = true;
    Parser(expansion.source, 0, variables).parseAll(expansion);
}

WordExpansions parseWord(std::string_view text, std::size_t& at, Variables& variables) {
    WordExpansions word;
    at = Parser(text, at, variables).parseWord(word);
    return word;
}

} // namespace ZEKT
