// What a backslash and the characters after it stand for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ZEKT {

struct Escape {
    std::uint32_t code; // of the character; 0xFFFD where the digits give none
    std::size_t end;    // offset behind the escape
    bool verbatim;      // the text between backslash and end stands for itself
};

// `at` is at a backslash. A backslash that ends the text stands for itself.
Escape readEscape(std::string_view text, std::size_t at);

// All escapes of a text replaced. Codes above 255 become UTF-8.
std::string withoutEscapes(std::string_view text);

// The same as characters; bytes outside ASCII are read as UTF-8 where they form a valid sequence.
std::u16string wideWithoutEscapes(std::string_view text);

// The inside of quotes in an expression, where a character is a byte: SyntaxException for any other code.
std::string expressionString(std::string_view text);

} // namespace ZEKT
