#include "zekt/Escapes.h"

#include "zekt/Errors.h"
#include "zekt/Lexical.h"

namespace ZEKT {

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kLastCharacter = 0x10FFFF;

int digitOf(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : 16;
}

Escape readCode(std::string_view text, std::size_t at, std::uint32_t base, std::size_t mostDigits) {
    std::uint32_t code = 0;
    const std::size_t first = at;
    while (at < text.size() && at - first < mostDigits && digitOf(text[at]) < static_cast<int>(base)) {
        if (code <= kLastCharacter) { // beyond, only the digits are counted
            code = code * base + static_cast<std::uint32_t>(digitOf(text[at]));
        }
        ++at;
    }
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    return {code > kLastCharacter || surrogate ? kReplacement : code, at, false};
}

void appendUtf8(std::string& text, std::uint32_t code) {
    const auto byte = [&text](std::uint32_t value) { text += static_cast<char>(value); };
    if (code < 0x800) {
        byte(0xC0 | code >> 6);
    } else if (code < 0x10000) {
        byte(0xE0 | code >> 12);
        byte(0x80 | (code >> 6 & 0x3F));
    } else {
        byte(0xF0 | code >> 18);
        byte(0x80 | (code >> 12 & 0x3F));
        byte(0x80 | (code >> 6 & 0x3F));
    }
    byte(0x80 | (code & 0x3F));
}

void appendUtf16(std::u16string& text, std::uint32_t code) {
    if (code >= 0x10000) {
        text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
        code = 0xDC00 + ((code - 0x10000) & 0x3FF);
    }
    text += static_cast<char16_t>(code);
}

// The character at `at`, which moves behind it.
std::uint32_t readUtf8(std::string_view text, std::size_t& at) {
    const auto byteAt = [&text](std::size_t i) {
        return i < text.size() ? static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])) : 0U;
    };
    const std::uint32_t lead = byteAt(at++);
    const std::size_t more = lead >= 0xC2 && lead < 0xE0 ? 1
                             : (lead & 0xF0) == 0xE0     ? 2
                             : (lead & 0xF8) == 0xF0     ? 3
                                                         : 0;
    std::uint32_t code = lead & (0x3FU >> more);
    for (std::size_t i = 0; i < more; ++i) {
        const std::uint32_t next = byteAt(at + i);
        if ((next & 0xC0) != 0x80) {
            return lead;
        }
        code = code << 6 | (next & 0x3F);
    }
    constexpr std::uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    if (more == 0 || code < kLeast[more] || code > kLastCharacter || (code >= 0xD800 && code < 0xE000)) {
        return lead;
    }
    at += more;
    return code;
}

} // namespace

Escape readEscape(std::string_view text, std::size_t at) {
    if (at + 1 == text.size()) {
        return {'\\', at + 1, false};
    }
    const char c = text[at + 1];
    if (Lexical::isDigit(c)) {
        return readCode(text, at + 1, 10, text.size());
    }
    constexpr std::string_view kLetters = "abfnrtv";
    constexpr std::string_view kControls = "\a\b\f\n\r\t\v";
    if (const auto letter = kLetters.find(c); letter != std::string_view::npos) {
        return {static_cast<unsigned char>(kControls[letter]), at + 2, false};
    }
    if (c == 'x' || c == 'u' || c == 'U') {
        const Escape escape = readCode(text, at + 2, 16, c == 'x' ? 2 : c == 'u' ? 4 : 8);
        if (escape.end > at + 2) {
            return escape;
        }
    }
    return {static_cast<unsigned char>(c), Lexical::escapeEnd(text, at), true};
}

std::string withoutEscapes(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t next = std::min(text.size(), text.find('\\', at));
        result.append(text, at, next - at);
        at = next;
        if (at == text.size()) {
            break;
        }
        const Escape escape = readEscape(text, at);
        if (escape.verbatim) {
            result.append(text, at + 1, escape.end - at - 1);
        } else if (escape.code <= 0xFF) {
            result += static_cast<char>(escape.code);
        } else {
            appendUtf8(result, escape.code);
        }
        at = escape.end;
    }
    return result;
}

std::u16string wideWithoutEscapes(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '\\') {
            const Escape escape = readEscape(text, at);
            if (!escape.verbatim) {
                appendUtf16(result, escape.code);
                at = escape.end;
                continue;
            }
            ++at;
        }
        appendUtf16(result, readUtf8(text, at));
    }
    return result;
}

std::string expressionString(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != '\\') {
            result += text[at++];
            continue;
        }
        const Escape escape = readEscape(text, at);
        if (escape.verbatim) {
            result.append(text, at + 1, escape.end - at - 1);
        } else if (escape.code <= 0xFF) {
            result += static_cast<char>(escape.code);
        } else {
            throw SyntaxException("Invalid character escape code inside { } expression");
        }
        at = escape.end;
    }
    return result;
}

} // namespace ZEKT
