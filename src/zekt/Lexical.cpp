#include "zekt/Lexical.h"

#include "zekt/Errors.h"

#include <algorithm>
#include <optional>

namespace ZEKT::Lexical {

namespace {

std::optional<std::size_t> findQuotedEnd(std::string_view text, std::size_t at) {
    for (++at; at < text.size();) {
        if (text[at] == '"') {
            return at + 1;
        }
        at = text[at] == '\\' ? escapeEnd(text, at) : at + 1;
    }
    return std::nullopt;
}

// Whether the last character, or the line end of two, is an escaped one.
bool endsWithEscape(std::string_view text) {
    text.remove_suffix(text.ends_with("\\\r\n") ? 2 : 1);
    const std::size_t other = text.find_last_not_of('\\');
    const std::size_t backslashes = text.size() - (other == std::string_view::npos ? 0 : other + 1);
    return backslashes % 2 != 0;
}

} // namespace

bool isVariableName(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), isName);
}

std::size_t quotedEnd(std::string_view text, std::size_t at) {
    const auto end = findQuotedEnd(text, at);
    if (!end) {
        throw SyntaxException("Missing \"");
    }
    return *end;
}

std::size_t bracketedEnd(std::string_view text, std::size_t at) {
    std::size_t open = 0;
    while (at < text.size()) {
        switch (text[at]) {
        case '"':
            at = quotedEnd(text, at);
            continue;
        case '\\':
            at = escapeEnd(text, at);
            continue;
        case '[':
            ++open;
            break;
        case ']':
            if (--open == 0) {
                return at + 1;
            }
            break;
        default:
            break;
        }
        ++at;
    }
    throw SyntaxException("Missing ]");
}

std::size_t escapeEnd(std::string_view text, std::size_t at) {
    const bool pair = text.substr(at + 1, 2) == "\r\n";
    return std::min(text.size(), at + (pair ? 3 : 2));
}

bool beginsComment(std::string_view text, std::size_t at) {
    return text[at] == '/' && at + 1 < text.size() && (text[at + 1] == '/' || text[at + 1] == '*');
}

std::size_t commentEnd(std::string_view text, std::size_t at) {
    if (text[at + 1] == '/') {
        return std::min(text.size(), text.find_first_of("\r\n", at));
    }
    const std::size_t end = text.find("*/", at + 2);
    if (end == std::string_view::npos) {
        throw SyntaxException("Missing */");
    }
    return end + 2;
}

std::size_t skipBlanks(std::string_view text, std::size_t at) {
    while (at < text.size()) {
        if (isSpace(text[at])) {
            ++at;
        } else if (beginsComment(text, at)) {
            at = commentEnd(text, at);
        } else {
            break;
        }
    }
    return at;
}

bool isQuoted(std::string_view text) {
    return text.starts_with('"') && findQuotedEnd(text, 0) == text.size();
}

bool isBracketed(std::string_view text) {
    if (!text.starts_with('[') || !text.ends_with(']')) {
        return false;
    }
    try {
        return bracketedEnd(text, 0) == text.size();
    } catch (const SyntaxException&) {
        return false; // a text that was put together may well be unbalanced
    }
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back()) && !endsWithEscape(text)) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace ZEKT::Lexical
