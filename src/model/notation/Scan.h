// The lowest layer of the notation: which byte ends what, and steps over blanks, comments, strings and
// compounds. Everything works on raw bytes between two pointers; texts are cut at the first NUL or SUB byte
// before they come here, so the end pointer is the only end of text. Only this room's sources include it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Stackbrace::Scan {

// Sets of bytes, as bits of a table entry.
enum Set : std::uint8_t {
    blank = 1,         // space, TAB, VT; form feed is an ordinary byte
    lineEnd = 2,       // CR, LF
    valueStop = 4,     // ends an unquoted value
    valueWordStop = 8, // ends one word of it
    keyStop = 16,      // the same for keys
    keyWordStop = 32,
    opener = 64,      // begins a string or a compound
    structural = 128, // what a scan for a compound's end has to look at
};

inline constexpr auto kSets = [] {
    std::array<std::uint8_t, 256> sets{};
    const auto add = [&sets](std::string_view bytes, int set) {
        for (const char c : bytes) {
            auto& entry = sets[static_cast<unsigned char>(c)];
            entry = static_cast<std::uint8_t>(entry | set);
        }
    };
    add(" \t\v", blank | valueWordStop | keyWordStop);
    add("\r\n", lineEnd | valueStop | valueWordStop | keyStop | keyWordStop);
    add(",;}", valueStop | valueWordStop | keyStop | keyWordStop);
    add("=:", keyStop | keyWordStop);
    add("/", valueWordStop | keyWordStop | structural);
    add("\"'", opener | structural);
    add("{", opener | structural);
    add("}", structural);
    return sets;
}();

inline bool in(char c, int set) {
    return (kSets[static_cast<unsigned char>(c)] & set) != 0;
}

// `p` is at a "/": to just behind the comment that begins here, or `p` if none does. Block comments nest; one
// that is left open goes on to the end.
const char* skipComment(const char* p, const char* end);

// Steps over blanks and comments from `p`. With `stopAtLineEnd` the scan ends before a CR or LF.
inline const char* skipBlanks(const char* p, const char* end, bool stopAtLineEnd) {
    const int skipped = stopAtLineEnd ? blank : blank | lineEnd;
    for (;;) {
        while (p != end && in(*p, skipped)) {
            ++p;
        }
        if (p == end || *p != '/') {
            return p;
        }
        const char* const behind = skipComment(p, end);
        if (behind == p) {
            return p;
        }
        p = behind;
    }
}

// `p` is at a quote: to just behind its partner, or to where an unterminated string ends (line end or end).
const char* skipString(const char* p, const char* end);

// One unquoted run of words.
struct Words {
    const char* last; // just behind the last word
    const char* next; // behind the blanks and comments that follow it
    bool regular;     // a single space between all words: the run reads as it is written
};
Words skipWords(const char* p, const char* end, Set stop, Set wordStop);

// The words of an irregular run with a single space between them.
std::string joinWords(std::string_view run);

// A compound and, behind it in a list of spans, all that are nested in it.
struct Span {
    std::uint32_t begin; // offset of the opening brace
    std::uint32_t end;   // offset behind the closing one
    std::uint32_t next;  // index of the first span that is not nested in this one
};

// `p` is at an opening brace: appends this compound and all within to `spans`, in the order of their opening
// braces, and returns where it ends. Compounds that are never closed end at `end`.
const char* scanCompound(const char* text, const char* p, const char* end, std::vector<Span>& spans);

} // namespace Stackbrace::Scan
