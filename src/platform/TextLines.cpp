#include "platform/TextLines.h"

#include <algorithm>

namespace Platform {

namespace {

// The longest beginning that fits, but at least one letter.
std::size_t fitting(std::string_view word, int width, const std::function<int(std::string_view)>& widthOf) {
    std::size_t end = 0;
    while (end < word.size()) {
        std::size_t next = end + 1;
        while (next < word.size() && (static_cast<unsigned char>(word[next]) & 0xC0) == 0x80) {
            ++next;
        }
        if (end > 0 && widthOf(word.substr(0, next)) > width) {
            break;
        }
        end = next;
    }
    return end;
}

void breakParagraph(std::string_view paragraph, int width,
                    const std::function<int(std::string_view)>& widthOf, std::vector<std::string>& lines) {
    std::string line;
    while (!paragraph.empty()) {
        std::string_view word = paragraph.substr(0, paragraph.find(' '));
        const std::string longer = line.empty() ? std::string(word) : line + " " + std::string(word);
        if (widthOf(longer) <= width) {
            line = longer;
        } else {
            if (!line.empty()) {
                lines.push_back(line);
            }
            std::string_view rest = word;
            while (widthOf(rest) > width && fitting(rest, width, widthOf) < rest.size()) {
                const std::size_t count = fitting(rest, width, widthOf);
                lines.emplace_back(rest.substr(0, count));
                rest.remove_prefix(count);
            }
            line = rest;
        }
        paragraph.remove_prefix(std::min(paragraph.size(), word.size() + 1));
    }
    lines.push_back(line);
}

} // namespace

std::vector<std::string> breakIntoLines(std::string_view text, int width,
                                        const std::function<int(std::string_view)>& widthOf) {
    std::vector<std::string> lines;
    while (true) {
        const std::size_t end = text.find('\n');
        breakParagraph(text.substr(0, end), width, widthOf, lines);
        if (end == std::string_view::npos) {
            return lines;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace Platform
