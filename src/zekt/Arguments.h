// The arguments of one instruction. Words are expanded from the left when an Arguments is made; a word
// LABEL:VALUE is a labelled argument, every other one the next indexed argument. An instruction then fetches
// what it knows and calls finish(), which refuses the rest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZEKT {

class Arguments;
class Frame;
struct ArgumentsForm; // parsed forms
struct WordForm;

// An instruction's argument text, not expanded yet. The interpreter hands these to executors with their
// parsed form; a text of one's own makes one, too. Points into the document.
class ArgumentText {
public:
    explicit ArgumentText(std::string_view text) : text_(text) {}
    ArgumentText(std::string_view text, const ArgumentsForm& form) : text_(text), form_(&form) {}

    std::string_view text() const { return text_; }
    const ArgumentsForm* form() const { return form_; }

private:
    std::string_view text_;
    const ArgumentsForm* form_ = nullptr;
};

inline constexpr std::size_t kAnyCount = std::numeric_limits<std::size_t>::max();

// How a list is split.
struct ListRules {
    std::size_t atLeast = 0;
    std::size_t atMost = kAnyCount;
    bool commasInParentheses = true; // these split, too; false: rgb(1,0,0) is one element
};

// One argument, used as what the instruction takes it for: each of the readers removes outer quotes or
// brackets, expands the inside of brackets and resolves escapes. Lives as long as its Arguments. What does
// not convert throws, "Invalid number: TEXT" for one.
class Argument {
public:
    Argument() = default;
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;

    std::string text() const;
    std::string keyword() const; // text() in lower case (A to Z)
    double number() const;
    std::int64_t integer() const;
    bool boolean() const;

    // For text that is drawn: an escape is a character of that code, bytes outside ASCII are read as UTF-8
    // where they form a valid sequence and as the characters of the same codes where not.
    std::u16string wideText() const;

    // Split at commas outside quotes and brackets, each element final. Throws "Too few list elements (got
    // ...". An empty text is a list without elements.
    std::vector<std::string> list(const ListRules& rules = {}) const;
    std::vector<double> numbers(std::size_t atLeast, std::size_t atMost) const;

    // Argument texts of their own: "gradient:[linear 0,0,1,1 from:red to:blue]".
    Arguments arguments() const;

    // The text after expansion, as it would be assigned to a variable: quotes, brackets and escapes stand.
    std::string_view raw() const { return raw_; }
    bool isBracketed() const { return bracketed_; } // one pair of brackets around all of it
    bool isQuoted() const { return quoted_; }

private:
    friend class Arguments;
    friend class Frame;
    friend class Machine;
    friend struct Instructions;

    std::string expandedInside() const;
    // What stands inside outer quotes or brackets, if any.
    std::string_view content() const;
    // Calls take(element) with each, expanded as a variable takes them.
    template <typename Take>
    void forElements(const ListRules& rules, Take take) const;
    std::vector<std::string> expandedElements() const;

    Frame* frame_ = nullptr;
    std::string_view raw_;
    const WordForm* form_ = nullptr; // where raw_ is the document's own text
    bool bracketed_ = false;
    bool quoted_ = false;
    bool labelled_ = false;
    bool used_ = false;
    std::string label_;
    std::string storage_; // of raw_, unless that is the document's
};

class Arguments {
public:
    Arguments(Frame& frame, const ArgumentText& text);
    ~Arguments();
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    bool empty() const { return count_ == 0; }
    std::size_t indexedCount() const { return indexedCount_; }
    void requireAny() const; // "Missing argument(s)"

    // Fetching marks an argument as used. "Missing indexed argument 1", "Missing argument: LABEL".
    const Argument& required(std::size_t index);
    const Argument& required(std::string_view label);

    // nullptr when it is not there.
    const Argument* optional(std::size_t index);
    const Argument* optional(std::string_view label);

    // The indexed arguments from `first` on, in order; all labelled ones in the order of the text.
    std::vector<const Argument*> rest(std::size_t first);
    struct Labelled {
        std::string_view label;
        const Argument* argument;
    };
    std::vector<Labelled> labelled();

    // "Unrecognized labels or too many arguments" if one was not fetched.
    void finish() const;

private:
    friend struct Instructions;

    Argument* find(std::size_t index);
    Argument* find(std::string_view label);
    void expand(Frame& frame, const WordForm& word, Argument& argument);

    std::unique_ptr<ArgumentsForm> form_; // of a text that came without
    std::unique_ptr<Argument[]> arguments_;
    std::size_t count_ = 0;
    std::size_t indexedCount_ = 0;
};

} // namespace ZEKT
