// Puts documents together. A compound is either written in lines, each element on a line of its own that is
// indented by one more TAB, or on one line within its parent's. Lines end in LF here; files hold CR LF
// (withFileLineEnds).
//
//   Writer writer;
//   writer.begin("MurmelonPatch");
//   writer.value("format", "1").string("name", name);
//   writer.end();
//   text = writer.take();
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Stackbrace {

enum class Layout {
    lines,  // a line an element
    inLine, // all on one line, and so is everything within
};

class Writer {
public:
    // Elements of structures. A key that would not read back as it is gets quoted.
    Writer& begin(std::string_view key, Layout layout = Layout::lines);
    Writer& string(std::string_view key, std::string_view content);
    Writer& value(std::string_view key, std::string_view text); // numbers, words
    Writer& boolean(std::string_view key, bool value) { return this->value(key, value ? "true" : "false"); }

    // Elements of lists, and a compound that has no key.
    Writer& begin(Layout layout = Layout::lines);
    Writer& string(std::string_view content);
    Writer& value(std::string_view text);

    Writer& end();

    // The finished document, with a line end behind it. Every compound has to be ended.
    std::string take();

private:
    struct Open {
        Layout layout;
        bool empty;
    };

    Writer& open(Layout layout);
    void startElement();
    void newLine();
    void appendKey(std::string_view key);

    std::string text_;
    std::vector<Open> open_;
    bool started_ = false; // an element stands at the top level
};

// `text` with CR LF for every LF. Strings are not harmed: theirs are escaped.
std::string withFileLineEnds(std::string_view text);

} // namespace Stackbrace
