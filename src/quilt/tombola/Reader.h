// The words of macro text: a place in a range of a source that moves forward over names, arguments, bodies
// and branches. It knows no scopes and expands nothing. Each fault is thrown at the place reached.
#pragma once

#include "tombola/Exception.h"
#include "tombola/PositionMap.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Tombola {

// Brackets inside one another in one argument.
inline constexpr std::size_t kMostBrackets = 20;

class Reader {
public:
    Reader(const SourcePointer& source, std::string_view range)
        : source_(&source), at_(range.data()), end_(range.data() + range.size()) {}

    // Reads a range of the same source.
    Reader within(std::string_view range) const { return {*source_, range}; }

    const SourcePointer& source() const { return *source_; }
    const char* at() const { return at_; }
    const char* end() const { return end_; }
    void moveTo(const char* place) { at_ = place; }
    std::size_t offsetOf(const char* place) const {
        return static_cast<std::size_t>(place - (*source_)->text.data());
    }

    [[noreturn]] void fail(std::string message) const;

    bool isAt(char c) const { return at_ != end_ && *at_ == c; }
    bool take(char c) {
        if (!isAt(c)) {
            return false;
        }
        ++at_;
        return true;
    }

    void skipBlanks();
    void skipWhitespace();

    // Blanks and one line end; nothing when the line holds anything else.
    void skipRestOfLine();

    // The identifier here, which may be empty.
    std::string_view identifier();

    // The same as the name of something; fails for a reserved word.
    std::string_view name();
    void refuseReserved(std::string_view name) const;

    // The text of an argument up to a byte that stops it, which is left, or between @< and @>. Brackets and
    // strings are passed over whole.
    std::string_view argument(char stop, char otherStop);

    // What stands before the matching @end, which is stepped over.
    std::string_view macroBody();

    // The next marker of the conditional that has begun, stepped over; the branch before it ends at `begin`.
    struct Marker {
        enum Kind { elif, otherwise, endif } kind;
        const char* begin;
    };
    Marker nextMarker();

private:
    [[noreturn]] void failAtEnd(const std::string& missing);
    const char* nextSign();
    std::string_view delimited();
    void skipString();
    void skipBrackets();

    const SourcePointer* source_;
    const char* at_;
    const char* end_;
};

} // namespace Tombola
