#include "notation/Quoting.h"

#include "notation/Errors.h"
#include "notation/Scan.h"

#include <algorithm>

namespace Stackbrace {

namespace {

bool isPrintable(char c) {
    return c >= 0x20 && c <= 0x7E;
}

bool isBlank(char c) {
    return Scan::in(c, Scan::blank | Scan::lineEnd);
}

bool isPlain(char c, char quoteByte) {
    return isPrintable(c) && c != '\\' && c != quoteByte;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The byte that the `count` digits in front of `text` stand for. Longer escapes are for characters beyond a
// byte in other programs; here a value that needs more than one is not valid.
std::optional<char> hexByte(std::string_view text, std::size_t count) {
    if (text.size() < count) {
        return std::nullopt;
    }
    unsigned value = 0;
    for (const char c : text.substr(0, count)) {
        const int digit = hexDigit(c);
        if (digit < 0 || value > 0xF) {
            return std::nullopt;
        }
        value = value * 16 + static_cast<unsigned>(digit);
    }
    return static_cast<char>(value);
}

// Takes the escape, a backslash and what belongs to it, off the front of `text`.
std::optional<char> takeEscape(std::string_view& text) {
    const char kind = text.size() > 1 ? text[1] : '\0';
    text.remove_prefix(text.size() > 1 ? 2 : 1);
    std::size_t digits = 0;
    switch (kind) {
    case '"':
    case '\'':
    case '\\':
        return kind;
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    case 'x':
        digits = 2;
        break;
    case 'u':
        digits = 4;
        break;
    case 'U':
        digits = 8;
        break;
    default:
        return std::nullopt;
    }
    const auto byte = hexByte(text, digits);
    if (byte) {
        text.remove_prefix(digits);
    }
    return byte;
}

} // namespace

std::optional<std::size_t> unquoteInto(std::string_view element, std::string& content) {
    std::string_view rest = element;
    while (!rest.empty() && rest.front() != '\v' && isBlank(rest.front())) {
        rest.remove_prefix(1);
    }
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) {
        content = element;
        return std::nullopt;
    }
    const auto offset = [&] { return element.size() - rest.size(); };
    const char quoteByte = rest.front();
    rest.remove_prefix(1);
    content.clear();
    while (!rest.empty() && rest.front() != quoteByte) {
        if (rest.front() == '\\') {
            const auto start = offset();
            const auto byte = takeEscape(rest);
            if (!byte) {
                return start;
            }
            content += *byte;
            continue;
        }
        std::size_t run = 0;
        while (run < rest.size() && isPlain(rest[run], quoteByte)) {
            ++run;
        }
        if (run == 0) {
            return offset();
        }
        content.append(rest, 0, run);
        rest.remove_prefix(run);
    }
    if (rest.empty()) {
        return offset(); // no closing quote
    }
    rest.remove_prefix(1);
    while (!rest.empty() && isBlank(rest.front())) {
        rest.remove_prefix(1);
    }
    return rest.empty() ? std::nullopt : std::optional(offset());
}

std::string unquote(std::string_view element) {
    element = element.substr(0, std::min(element.find('\0'), element.find('\x1A')));
    std::string content;
    if (const auto fault = unquoteInto(element, content)) {
        throw ParsingError("Invalid string", positionIn(element, *fault));
    }
    return content;
}

std::string quote(std::string_view content) {
    std::string text;
    appendQuoted(text, content);
    return text;
}

void appendQuoted(std::string& text, std::string_view content) {
    static constexpr char kDigits[] = "0123456789abcdef";
    text += '"';
    for (std::size_t i = 0; i < content.size();) {
        const auto start = i;
        while (i < content.size() && isPlain(content[i], '"')) {
            ++i;
        }
        text.append(content, start, i - start);
        if (i == content.size()) {
            break;
        }
        const char c = content[i++];
        text += '\\';
        switch (c) {
        case '\t':
            text += 't';
            break;
        case '\n':
            text += 'n';
            break;
        case '\r':
            text += 'r';
            break;
        case '"':
        case '\\':
            text += c;
            break;
        default:
            text += 'x';
            text += kDigits[static_cast<unsigned char>(c) >> 4];
            text += kDigits[static_cast<unsigned char>(c) & 15];
            break;
        }
    }
    text += '"';
}

} // namespace Stackbrace
