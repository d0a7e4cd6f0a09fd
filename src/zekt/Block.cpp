#include "zekt/Block.h"

#include "zekt/Frame.h"
#include "zekt/Instructions.h"
#include "zekt/Interpreter.h"
#include "zekt/Lexical.h"

namespace ZEKT {

namespace {

std::size_t statementEnd(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] != ';' && !Lexical::isLineEnd(text[at])) {
        if (Lexical::beginsComment(text, at)) {
            at = Lexical::commentEnd(text, at);
        } else if (text[at] == '"') {
            at = Lexical::quotedEnd(text, at);
        } else if (text[at] == '[') {
            at = Lexical::bracketedEnd(text, at);
        } else {
            at = text[at] == '\\' ? Lexical::escapeEnd(text, at) : at + 1;
        }
    }
    return at;
}

std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find_first_of("\r\n"));
}

bool isInstructionName(std::string_view name) {
    return Lexical::isLetter(name[0]) || name[0] == '_';
}

// What follows `local` and `return`: a name, optionally with a value.
void readDeclaration(Statement& statement, Variables& variables) {
    const std::string_view rest = statement.value.source;
    const std::size_t first = Lexical::skipBlanks(rest, 0);
    std::size_t end = first;
    while (end < rest.size() && rest[end] != '=' && Lexical::skipBlanks(rest, end) == end) {
        ++end;
    }
    if (first == rest.size()) {
        throw SyntaxException("Missing variable name");
    }
    const std::string_view name = rest.substr(first, end - first);
    if (!Lexical::isVariableName(name)) {
        throw SyntaxException("Invalid variable name");
    }
    const std::size_t next = Lexical::skipBlanks(rest, end);
    statement.hasValue = next < rest.size();
    if (statement.hasValue && rest[next] != '=') {
        throw SyntaxException("Expected =");
    }
    statement.symbol = &variables.symbol(name);
    statement.value = Expansion(statement.hasValue ? rest.substr(next + 1) : std::string_view());
}

void readBeginning(Statement& statement, Variables& variables) {
    const std::string_view text = statement.text;
    std::size_t end = 0;
    while (end < text.size() && Lexical::isName(text[end])) {
        ++end;
    }
    const std::string_view word = text.substr(0, end);
    const std::size_t next = Lexical::skipBlanks(text, end);
    if (!word.empty() && next < text.size() && text[next] == '=') {
        statement.kind = Statement::Kind::assignment;
        statement.symbol = &variables.symbol(word);
        statement.value = Expansion(text.substr(next + 1));
        return;
    }
    if (word.empty() || !isInstructionName(word) || (next == end && end < text.size())) {
        throw SyntaxException("Invalid instruction");
    }
    statement.value = Expansion(text.substr(next));
    const std::string name = folded(word);
    statement.builtIn = findBuiltIn(name);
    if (statement.builtIn != nullptr && statement.builtIn->declares) {
        readDeclaration(statement, variables);
    }
    if (statement.builtIn == nullptr) {
        statement.symbol = &variables.symbol(name);
    }
    statement.kind = statement.builtIn != nullptr ? Statement::Kind::builtIn : Statement::Kind::domain;
}

WordForm readWord(std::string_view text, std::size_t& at, Variables& variables) {
    WordForm word;
    auto expansions = parseWord(text, at, variables);
    word.label = std::move(expansions.label);
    word.value = std::move(expansions.value);
    if (word.isLiteral()) {
        word.bracketed = Lexical::isBracketed(word.value.literal());
        word.quoted = Lexical::isQuoted(word.value.literal());
    }
    return word;
}

} // namespace

WordForm::WordForm() = default;
WordForm::WordForm(WordForm&&) noexcept = default;
WordForm::~WordForm() = default;

ArgumentsForm::ArgumentsForm(std::string_view text, Variables& variables) {
    try {
        std::size_t at = Lexical::skipBlanks(text, 0);
        while (at < text.size()) {
            words.push_back(readWord(text, at, variables));
            if (words.size() > kMostWords) {
                throw RunTimeException("Text limit reached");
            }
            at = Lexical::skipBlanks(text, at);
        }
    } catch (const Exception& error) {
        Piece& piece = words.emplace_back().value.pieces.emplace_back();
        piece.kind = Piece::Kind::fault;
        piece.fault.emplace(error);
    }
}

ArgumentsForm::~ArgumentsForm() = default;

std::shared_ptr<Block> Block::owning(std::string_view source) {
    auto block = std::make_shared<Block>(std::string_view());
    block->storage = source;
    block->text = block->storage;
    return block;
}

void Block::parse(Variables& variables) {
    parsed = true;
    std::size_t at = 0;
    std::size_t beginning = text.size(); // of the statement whose end is sought
    try {
        // The first statement beyond the limit is as far as a run can get.
        while (statements.size() <= kStatementLimit) {
            at = Lexical::skipBlanks(text, at);
            if (at == text.size()) {
                return;
            }
            if (text[at] == ';') {
                ++at;
                continue;
            }
            beginning = at;
            const std::size_t end = statementEnd(text, at);
            beginning = text.size();
            Statement& statement = statements.emplace_back();
            statement.text = Lexical::trimmed(text.substr(at, end - at));
            try {
                readBeginning(statement, variables);
            } catch (const SyntaxException& error) {
                statement.fault = std::make_unique<Fault>(error);
            }
            at = end;
        }
    } catch (const SyntaxException& error) {
        fault.emplace(error);
        faultText = firstLine(text.substr(beginning));
    }
}

} // namespace ZEKT
