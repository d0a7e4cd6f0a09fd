#include "tombola/Reader.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace Tombola {

namespace {

enum ByteClass : unsigned char { plain = 0, letter = 1, digit = 2, quote = 4, opening = 8 };

constexpr std::array<unsigned char, 256> kClasses = [] {
    std::array<unsigned char, 256> classes{};
    for (int c = 0; c < 256; ++c) {
        const int lower = c | 0x20;
        if ((c < 128 && lower >= 'a' && lower <= 'z') || c == '_' || c == '$') {
            classes[static_cast<std::size_t>(c)] = letter;
        } else if (c >= '0' && c <= '9') {
            classes[static_cast<std::size_t>(c)] = digit;
        } else if (c == '"' || c == '\'') {
            classes[static_cast<std::size_t>(c)] = quote;
        } else if (c == '(' || c == '[' || c == '{') {
            classes[static_cast<std::size_t>(c)] = opening;
        }
    }
    return classes;
}();

bool is(char c, int classes) {
    return (kClasses[static_cast<unsigned char>(c)] & classes) != 0;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

bool isWhitespace(char c) {
    return isBlank(c) || c == '\r' || c == '\n';
}

char closingOf(char bracket) {
    return bracket == '(' ? ')' : bracket == '[' ? ']' : '}';
}

std::string_view between(const char* begin, const char* end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

std::string_view withoutTrailingWhitespace(std::string_view text) {
    while (!text.empty() && isWhitespace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// "include" is not among them: the word is a directive before it could be a call, but a parameter may have
// it.
constexpr std::string_view kReserved[] = {"begin", "define", "end", "endif",
                                          "elif",  "else",   "if",  "redefine"};

} // namespace

void Reader::fail(std::string message) const {
    const Source& source = **source_;
    throw Exception(std::move(message), Stackbrace::positionIn(source.text, offsetOf(at_), source.name));
}

void Reader::failAtEnd(const std::string& missing) {
    at_ = end_;
    fail("Missing " + missing);
}

void Reader::skipBlanks() {
    while (at_ != end_ && isBlank(*at_)) {
        ++at_;
    }
}

void Reader::skipWhitespace() {
    while (at_ != end_ && isWhitespace(*at_)) {
        ++at_;
    }
}

void Reader::skipRestOfLine() {
    const char* place = at_;
    while (place != end_ && isBlank(*place)) {
        ++place;
    }
    if (place != end_ && *place == '\r') {
        ++place;
    }
    if (place == end_) {
        at_ = place;
    } else if (*place == '\n') {
        at_ = place + 1;
    }
}

std::string_view Reader::identifier() {
    const char* const begin = at_;
    if (at_ != end_ && is(*at_, letter)) {
        do {
            ++at_;
        } while (at_ != end_ && is(*at_, letter | digit));
    }
    return between(begin, at_);
}

std::string_view Reader::name() {
    const std::string_view name = identifier();
    refuseReserved(name);
    return name;
}

void Reader::refuseReserved(std::string_view name) const {
    if (std::ranges::find(kReserved, name) != std::end(kReserved)) {
        fail("Illegal use of \"" + std::string(name) + "\"");
    }
}

std::string_view Reader::argument(char stop, char otherStop) {
    if (end_ - at_ >= 2 && at_[0] == '@' && at_[1] == '<') {
        return withoutTrailingWhitespace(delimited());
    }
    const char* const begin = at_;
    while (at_ != end_ && *at_ != stop && *at_ != otherStop) {
        if (is(*at_, quote)) {
            skipString();
        } else if (is(*at_, opening)) {
            skipBrackets();
        } else {
            ++at_;
        }
    }
    return withoutTrailingWhitespace(between(begin, at_));
}

// Steps behind the next @ that is not doubled and returns where it stands, or nullptr.
const char* Reader::nextSign() {
    for (;;) {
        const auto left = static_cast<std::size_t>(end_ - at_);
        const auto* const sign = static_cast<const char*>(std::memchr(at_, '@', left));
        if (sign == nullptr) {
            return nullptr;
        }
        at_ = sign + 1;
        if (!take('@')) {
            return sign;
        }
    }
}

std::string_view Reader::delimited() {
    at_ += 2;
    const char* const begin = at_;
    for (std::size_t open = 1; const char* const sign = nextSign();) {
        if (take('<')) {
            ++open;
        } else if (take('>') && --open == 0) {
            return between(begin, sign);
        }
    }
    failAtEnd("@>");
}

void Reader::skipString() {
    const char mark = *at_++;
    for (; at_ != end_; ++at_) {
        if (*at_ == mark) {
            ++at_;
            return;
        }
        if (*at_ == '\\' && ++at_ == end_) {
            break;
        }
    }
    failAtEnd(std::string(1, mark));
}

void Reader::skipBrackets() {
    std::array<char, kMostBrackets> closing;
    std::size_t open = 0;
    do {
        if (at_ == end_) {
            failAtEnd(std::string(1, closing[open - 1]));
        }
        if (is(*at_, quote)) {
            skipString();
            continue;
        }
        if (is(*at_, opening)) {
            if (open == closing.size()) {
                fail("Recursion depth limit reached");
            }
            closing[open++] = closingOf(*at_);
        } else if (*at_ == closing[open - 1]) {
            --open;
        }
        ++at_;
    } while (open != 0);
}

std::string_view Reader::macroBody() {
    const char* const begin = at_;
    for (std::size_t open = 1; const char* const sign = nextSign();) {
        const std::string_view word = identifier();
        if (word == "begin") {
            ++open;
        } else if (word == "end" && --open == 0) {
            return between(begin, sign);
        }
    }
    failAtEnd("@end");
}

Reader::Marker Reader::nextMarker() {
    for (std::size_t open = 1; const char* const sign = nextSign();) {
        const std::string_view word = identifier();
        if (word == "if") {
            ++open;
        } else if (word == "endif" && --open == 0) {
            return {Marker::endif, sign};
        } else if (open == 1 && word == "elif") {
            return {Marker::elif, sign};
        } else if (open == 1 && word == "else") {
            return {Marker::otherwise, sign};
        }
    }
    failAtEnd("@endif");
}

} // namespace Tombola
