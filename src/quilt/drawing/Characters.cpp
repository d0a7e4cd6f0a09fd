#include "quilt/drawing/Characters.h"

namespace Quilt {

namespace {

constexpr char32_t kFirstBeyond = 0x10000;

bool isHighHalf(char16_t c) {
    return c >= 0xD800 && c < 0xDC00;
}

bool isLowHalf(char16_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

} // namespace

std::u16string charactersOf(std::string_view text) {
    std::u16string characters;
    characters.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t more = lead >= 0xC2 && lead < 0xE0 ? 1 : lead >= 0xE0 && lead < 0xF0 ? 2 : lead >= 0xF0 && lead < 0xF5 ? 3 : 0;
        char32_t code = more == 1 ? lead & 0x1FU : more == 2 ? lead & 0x0FU : lead & 0x07U;
        bool fits = more > 0 && at + more < text.size();
        for (std::size_t i = 1; fits && i <= more; ++i) {
            const auto next = static_cast<unsigned char>(text[at + i]);
            fits = (next & 0xC0) == 0x80;
            code = code << 6 | (next & 0x3FU);
        }
        constexpr char32_t kLeast[] = {0, 0x80, 0x800, kFirstBeyond};
        if (!fits || code < kLeast[more] || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
            characters += static_cast<char16_t>(lead);
            ++at;
            continue;
        }
        if (code < kFirstBeyond) {
            characters += static_cast<char16_t>(code);
        } else {
            characters += static_cast<char16_t>(0xD800 + ((code - kFirstBeyond) >> 10));
            characters += static_cast<char16_t>(0xDC00 + ((code - kFirstBeyond) & 0x3FF));
        }
        at += more + 1;
    }
    return characters;
}

std::string utf8Of(std::u16string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (isHighHalf(text[i]) && i + 1 < text.size() && isLowHalf(text[i + 1])) {
            code = kFirstBeyond + ((code - 0xD800) << 10) + (text[++i] - 0xDC00U);
        }
        const auto put = [&bytes](char32_t byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
        const auto follow = [&](int shift) { put(0x80 | (code >> shift & 0x3F)); };
        if (code < 0x80) {
            put(code);
        } else if (code < 0x800) {
            put(0xC0 | code >> 6);
            follow(0);
        } else if (code < kFirstBeyond) {
            put(0xE0 | code >> 12);
            follow(6);
            follow(0);
        } else {
            put(0xF0 | code >> 18);
            follow(12);
            follow(6);
            follow(0);
        }
    }
    return bytes;
}

} // namespace Quilt
