#include "quilt/Unicode.h"

#include <cstddef>

namespace Quilt {

namespace {

constexpr char32_t kFirstBeyond16Bits = 0x10000;
constexpr char32_t kLastCharacter = 0x10FFFF;

struct Decoded {
    char32_t character;
    std::size_t bytes;
};

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isSurrogate(char32_t character) {
    return character >= 0xD800 && character < 0xE000;
}

// The character at the beginning of `text`, which is not empty.
Decoded decode(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, kFirstBeyond16Bits}; // less has a shorter form
    const Decoded byteItself{first, 1};
    if (length == 1 || first < 0xC0 || text.size() < length) {
        return byteItself;
    }
    char32_t character = first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text[i])) {
            return byteItself;
        }
        character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    if (character < kLeast[length] || character > kLastCharacter || isSurrogate(character)) {
        return byteItself;
    }
    return {character, length};
}

void append(std::string& text, char32_t character) {
    const auto byte = [&text](char32_t bits) { text += static_cast<char>(bits); };
    if (character < 0x80) {
        byte(character);
        return;
    }
    if (character < 0x800) {
        byte(0xC0 | character >> 6);
    } else if (character < kFirstBeyond16Bits) {
        byte(0xE0 | character >> 12);
        byte(0x80 | (character >> 6 & 0x3F));
    } else {
        byte(0xF0 | character >> 18);
        byte(0x80 | (character >> 12 & 0x3F));
        byte(0x80 | (character >> 6 & 0x3F));
    }
    byte(0x80 | (character & 0x3F));
}

} // namespace

std::u16string toUtf16(std::string_view utf8) {
    std::u16string result;
    while (!utf8.empty()) {
        const Decoded next = decode(utf8);
        utf8.remove_prefix(next.bytes);
        if (next.character < kFirstBeyond16Bits) {
            result += static_cast<char16_t>(next.character);
        } else {
            const char32_t rest = next.character - kFirstBeyond16Bits;
            result += static_cast<char16_t>(0xD800 + (rest >> 10));
            result += static_cast<char16_t>(0xDC00 + (rest & 0x3FF));
        }
    }
    return result;
}

std::string toUtf8(std::u16string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t character = text[i];
        const bool pair = character >= 0xD800 && character < 0xDC00 && i + 1 < text.size() &&
                          text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
        if (pair) {
            character = kFirstBeyond16Bits + ((character - 0xD800) << 10) + (text[++i] - 0xDC00u);
        }
        append(result, character);
    }
    return result;
}

} // namespace Quilt
