#include "notation/Scan.h"

#include <utility>

namespace Stackbrace::Scan {

namespace {

// Whether any of four bytes is in the set.
bool in4(const char* p, int set) {
    const auto bits = [](char c) { return kSets[static_cast<unsigned char>(c)]; };
    return ((bits(p[0]) | bits(p[1]) | bits(p[2]) | bits(p[3])) & set) != 0;
}

bool startsComment(const char* p, const char* end) {
    return end - p > 1 && (p[1] == '/' || p[1] == '*');
}

const char* skipBlockComment(const char* p, const char* end) {
    std::size_t depth = 0;
    while (end - p > 1) {
        if (p[0] == '/' && p[1] == '*') {
            ++depth;
            p += 2;
        } else if (p[0] == '*' && p[1] == '/') {
            p += 2;
            if (--depth == 0) {
                return p;
            }
        } else {
            ++p;
        }
    }
    return end;
}

} // namespace

const char* skipComment(const char* p, const char* end) {
    if (!startsComment(p, end)) {
        return p;
    }
    if (p[1] == '*') {
        return skipBlockComment(p, end);
    }
    while (p != end && !in(*p, lineEnd)) {
        ++p;
    }
    return p;
}

const char* skipString(const char* p, const char* end) {
    const char quote = *p++;
    while (p != end && !in(*p, lineEnd)) {
        if (*p == quote) {
            return p + 1;
        }
        if (*p == '\\') {
            // A backslash takes the next byte with it, and a CR LF whole: strings go on over such lines.
            const auto left = end - p;
            if (left == 1) {
                return end;
            }
            p += left > 2 && p[1] == '\r' && p[2] == '\n' ? 3 : 2;
        } else {
            ++p;
        }
    }
    return p;
}

Words skipWords(const char* p, const char* end, Set stop, Set wordStop) {
    Words words{p, p, true};
    if (p == end || in(*p, stop)) {
        return words;
    }
    for (;;) {
        while (p != end && (!in(*p, wordStop) || (*p == '/' && !startsComment(p, end)))) {
            ++p;
        }
        words.last = p;
        words.next = p = skipBlanks(p, end, true);
        if (p == end || in(*p, stop)) {
            return words;
        }
        words.regular = words.regular && p == words.last + 1 && *words.last == ' ';
    }
}

std::string joinWords(std::string_view run) {
    std::string result;
    const char* p = run.data();
    const char* const end = p + run.size();
    while (p != end) {
        const char* const word = p;
        while (p != end && !in(*p, blank) && !(*p == '/' && startsComment(p, end))) {
            ++p;
        }
        result.append(result.empty() ? "" : " ").append(word, p);
        p = skipBlanks(p, end, true);
    }
    return result;
}

const char* scanCompound(const char* text, const char* p, const char* end, std::vector<Span>& spans) {
    constexpr auto kNone = static_cast<std::uint32_t>(-1);
    const auto offset = [text](const char* at) { return static_cast<std::uint32_t>(at - text); };
    // No recursion and no stack: while a compound is open, `next` is its parent's index.
    std::uint32_t innermost = kNone;
    const auto close = [&](const char* at) {
        Span& span = spans[innermost];
        span.end = offset(at);
        innermost = std::exchange(span.next, static_cast<std::uint32_t>(spans.size()));
    };
    for (;;) {
        while (end - p >= 4 && !in4(p, structural)) {
            p += 4;
        }
        while (p != end && !in(*p, structural)) {
            ++p;
        }
        if (p == end) {
            break;
        }
        switch (*p) {
        case '{':
            spans.push_back({offset(p), 0, innermost});
            innermost = static_cast<std::uint32_t>(spans.size() - 1);
            ++p;
            break;
        case '}':
            close(++p);
            if (innermost == kNone) {
                return p;
            }
            break;
        case '/':
            p = startsComment(p, end) ? skipComment(p, end) : p + 1;
            break;
        default:
            p = skipString(p, end);
            break;
        }
    }
    while (innermost != kNone) {
        close(end);
    }
    return end;
}

} // namespace Stackbrace::Scan
