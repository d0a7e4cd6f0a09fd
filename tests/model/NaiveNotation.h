// The notation's rules written down as plainly as can be, a byte at a time and a copy for every element: what
// the reader is compared with. It recurses and takes time depth * size.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace Naive {

inline bool oneOf(char c, const std::string& set) {
    return c == '\0' || set.find(c) != std::string::npos;
}

struct Text {
    std::string bytes; // cut at the first NUL or SUB
    std::size_t at = 0;

    explicit Text(const std::string& text)
        : bytes(text.substr(0, std::min(text.find('\0'), text.find('\x1A')))) {}

    char peek(std::size_t ahead = 0) const { return at + ahead < bytes.size() ? bytes[at + ahead] : '\0'; }
    bool atComment() const { return peek() == '/' && (peek(1) == '/' || peek(1) == '*'); }

    void skipComment() {
        if (peek(1) == '/') {
            while (!oneOf(peek(), "\r\n")) {
                ++at;
            }
            return;
        }
        at += 2;
        for (int depth = 1; depth > 0 && peek() != '\0';) {
            const std::string two{peek(), peek(1)};
            depth += two == "/*" ? 1 : two == "*/" ? -1 : 0;
            at += two == "/*" || two == "*/" ? 2 : 1;
        }
    }

    void skipBlanks(bool stopAtLineEnd) {
        for (;;) {
            if (peek() != '\0' && oneOf(peek(), stopAtLineEnd ? " \t\v" : " \t\v\r\n")) {
                ++at;
            } else if (atComment()) {
                skipComment();
            } else {
                return;
            }
        }
    }

    void skipValue() {
        const char open = peek();
        ++at;
        if (open == '{') {
            while (peek() != '}' && peek() != '\0') {
                if (oneOf(peek(), "\"'{")) {
                    skipValue();
                } else if (atComment()) {
                    skipComment();
                } else {
                    ++at;
                }
            }
            at += peek() == '}' ? 1 : 0;
            return;
        }
        while (!oneOf(peek(), "\r\n")) {
            if (peek() == open) {
                ++at;
                return;
            }
            if (peek() == '\\') {
                at += peek(1) == '\r' && peek(2) == '\n' ? 2 : 1;
                at = std::min(at, bytes.size() - 1);
            }
            ++at;
        }
    }

    std::string value(const std::string& stop, const std::string& wordStop) {
        if (peek() != '\0' && oneOf(peek(), "\"'{")) {
            const auto from = at;
            skipValue();
            const auto raw = bytes.substr(from, at - from);
            skipBlanks(true);
            return raw;
        }
        std::string result;
        while (!oneOf(peek(), stop)) {
            std::string word;
            while (!oneOf(peek(), wordStop) || (peek() == '/' && !atComment())) {
                word += peek();
                ++at;
            }
            result += (result.empty() ? "" : " ") + word;
            skipBlanks(true);
        }
        return result;
    }

    std::string value() { return value(",;}\r\n", " ,;}/\t\v\r\n"); }

    void skipSeparator() {
        skipBlanks(false);
        if (peek() == ',' || peek() == ';') {
            ++at;
            skipBlanks(false);
        }
    }

    bool begin() {
        skipBlanks(false);
        const bool braced = peek() == '{';
        at += braced ? 1 : 0;
        skipBlanks(false);
        return braced;
    }
    bool more() const { return peek() != '\0' && peek() != '}'; }
    bool complete(bool braced) const { return (peek() == '}') == braced; }
};

inline std::pair<bool, std::vector<std::string>> list(const std::string& source) {
    Text text(source);
    std::vector<std::string> elements;
    const bool braced = text.begin();
    while (text.more()) {
        elements.push_back(text.value());
        text.skipSeparator();
    }
    return {text.complete(braced), elements};
}

// Quoted keys are left in their quotes: what unquoting makes of them has a table of its own.
inline std::pair<bool, std::map<std::string, std::string>> structure(const std::string& source) {
    Text text(source);
    std::map<std::string, std::string> elements;
    const bool braced = text.begin();
    while (text.more()) {
        const auto key = text.value(",;=:}\r\n", " ,;=:}/\t\v\r\n");
        std::string value;
        if (text.peek() == '=' || text.peek() == ':') {
            ++text.at;
            text.skipBlanks(false);
            value = text.value();
        }
        text.skipSeparator();
        elements.emplace(key, value);
    }
    return {text.complete(braced), elements};
}

} // namespace Naive
