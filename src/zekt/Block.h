// The parsed form of a sequence of statements. Parsing finds where statements end and what they begin with;
// the arguments are parsed when a statement first runs, bodies among them when they first run. What is wrong
// with the text is kept as a fault of the statement in which it would have been noticed.
#pragma once

#include "zekt/Expansion.h"
#include "zekt/Fault.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZEKT {

class Variables;
struct ArgumentsForm;
struct Block;
struct BuiltIn;

struct ElementForms {
    bool commasInParentheses;
    std::vector<Expansion> elements;
};

// One argument. The forms of a literal's inside are made when it is first used so.
struct WordForm {
    WordForm();
    WordForm(WordForm&&) noexcept;
    ~WordForm();

    bool isLiteral() const { return value.isLiteral(); }

    std::optional<Expansion> label;
    Expansion value;
    bool bracketed = false; // of a literal
    bool quoted = false;
    mutable std::unique_ptr<Expansion> inside;
    mutable std::unique_ptr<ElementForms> elements; // of a bracketed list
    mutable std::unique_ptr<Block> body;
    mutable std::unique_ptr<ArgumentsForm> arguments;
};

struct ArgumentsForm {
    ArgumentsForm(std::string_view text, Variables& variables);
    ~ArgumentsForm();

    std::vector<WordForm> words;
};

struct Statement {
    enum class Kind : std::uint8_t { assignment, builtIn, domain, fault };

    Kind kind = Kind::fault;
    bool hasValue = true; // a declaration may have none
    std::string_view text;
    // What an assignment or a declaration writes to; for a domain instruction, holds its name in lower case.
    Symbol* symbol = nullptr;
    const BuiltIn* builtIn = nullptr;
    // Of what is assigned or, for instructions, of the argument text: it as a whole, or as words.
    mutable Expansion value;
    mutable std::unique_ptr<ArgumentsForm> form;
    std::unique_ptr<Fault> fault;
};

struct Block {
    explicit Block(std::string_view source) : text(source) {}
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    // A block with a text of its own.
    static std::shared_ptr<Block> owning(std::string_view source);

    void parse(Variables& variables);

    std::string storage;
    std::string_view text;
    bool parsed = false;
    std::vector<Statement> statements;
    // Why there is no statement after the last; the statement it was to be, or empty between statements.
    std::optional<Fault> fault;
    std::string_view faultText;
};

} // namespace ZEKT
