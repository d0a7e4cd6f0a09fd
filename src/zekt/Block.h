// The parsed form of a sequence of statements. Parsing finds where statements end and what they begin with; the
// arguments are parsed when a statement first runs, bodies among them when they first run. What is wrong with
// the text is kept as a fault of the statement in which it would have been noticed.
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
    std::string_view text;
    std::string_view rest;             // of the text: what is assigned, or the arguments
    Symbol* target = nullptr;          // of an assignment or a declaration
    bool hasValue = true;              // a declaration may have none
    const BuiltIn* builtIn = nullptr;
    std::string name;                  // of a domain instruction, in lower case
    mutable Expansion value;           // of rest, or of what a declaration assigns
    mutable std::unique_ptr<ArgumentsForm> form; // of rest
    std::optional<Fault> fault;
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
