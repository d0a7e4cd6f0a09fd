#include "notation/Writer.h"

#include "notation/Quoting.h"
#include "notation/Scan.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace Stackbrace {

namespace {

// Whether an unquoted key reads back as it is.
bool isPlainKey(std::string_view key) {
    const bool plainBytes = std::ranges::all_of(
        key, [](char c) { return c > 0x20 && c <= 0x7E && !Scan::in(c, Scan::keyStop | Scan::structural); });
    return plainBytes && !key.empty();
}

} // namespace

Writer& Writer::begin(std::string_view key, Layout layout) {
    startElement();
    appendKey(key);
    return open(layout);
}

Writer& Writer::string(std::string_view key, std::string_view content) {
    startElement();
    appendKey(key);
    appendQuoted(text_, content);
    return *this;
}

Writer& Writer::value(std::string_view key, std::string_view text) {
    startElement();
    appendKey(key);
    text_ += text;
    return *this;
}

Writer& Writer::begin(Layout layout) {
    startElement();
    return open(layout);
}

Writer& Writer::string(std::string_view content) {
    startElement();
    appendQuoted(text_, content);
    return *this;
}

Writer& Writer::value(std::string_view text) {
    startElement();
    text_ += text;
    return *this;
}

Writer& Writer::end() {
    assert(!open_.empty());
    const Open closed = open_.back();
    open_.pop_back();
    if (closed.layout == Layout::lines && !closed.empty) {
        newLine();
        text_ += '}';
    } else {
        text_ += " }";
    }
    return *this;
}

std::string Writer::take() {
    assert(open_.empty());
    if (!text_.empty()) {
        text_ += '\n';
    }
    started_ = false;
    return std::exchange(text_, {});
}

Writer& Writer::open(Layout layout) {
    const bool inLine = !open_.empty() && open_.back().layout == Layout::inLine;
    open_.push_back({inLine ? Layout::inLine : layout, true});
    text_ += '{';
    return *this;
}

void Writer::startElement() {
    if (open_.empty()) {
        if (std::exchange(started_, true)) {
            newLine();
        }
        return;
    }
    const bool first = std::exchange(open_.back().empty, false);
    if (open_.back().layout == Layout::lines) {
        newLine();
    } else {
        text_ += first ? " " : ", ";
    }
}

void Writer::newLine() {
    text_ += '\n';
    text_.append(open_.size(), '\t');
}

void Writer::appendKey(std::string_view key) {
    if (isPlainKey(key)) {
        text_ += key;
    } else {
        appendQuoted(text_, key);
    }
    text_ += ": ";
}

std::string withFileLineEnds(std::string_view text) {
    std::string result;
    result.reserve(text.size() + static_cast<std::size_t>(std::ranges::count(text, '\n')));
    for (const char c : text) {
        if (c == '\n') {
            result += '\r';
        }
        result += c;
    }
    return result;
}

} // namespace Stackbrace
