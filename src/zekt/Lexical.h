// What all readers of script text agree on: classes of characters, and where quoted text, bracketed text,
// escapes and comments end. Positions are offsets into the text.
#pragma once

#include <cstddef>
#include <string_view>

namespace ZEKT::Lexical {

constexpr bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
constexpr bool isLineEnd(char c) {
    return c == '\n' || c == '\r';
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
// Of bare words in expressions. A "-" there is an operator.
constexpr bool isWord(char c) {
    return isLetter(c) || isDigit(c) || c == '_' || c == '.';
}
// Of names everywhere else.
constexpr bool isName(char c) {
    return isWord(c) || c == '-';
}

bool isVariableName(std::string_view text);

// `at` is at the opening character; the offset behind the closing one. SyntaxException "Missing \"", "Missing
// ]".
std::size_t quotedEnd(std::string_view text, std::size_t at);
std::size_t bracketedEnd(std::string_view text, std::size_t at);

// `at` is at a backslash: behind the character it escapes. A line end of two characters is one.
std::size_t escapeEnd(std::string_view text, std::size_t at);

bool beginsComment(std::string_view text, std::size_t at);
std::size_t commentEnd(std::string_view text, std::size_t at); // "Missing */"; a line's end is not part of it
std::size_t skipBlanks(std::string_view text, std::size_t at); // white space and comments

// Whether all of the text is one quoted or one bracketed text.
bool isQuoted(std::string_view text);
bool isBracketed(std::string_view text);

// Without its first and last character.
constexpr std::string_view inside(std::string_view text) {
    return text.substr(1, text.size() - 2);
}
std::string_view trimmed(std::string_view text);

} // namespace ZEKT::Lexical
