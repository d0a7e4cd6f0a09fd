#include "platform/linux/MenuPane.h"

#include <algorithm>
#include <cstdlib>

namespace Platform {

namespace {

constexpr int kBorder = 1;

char32_t lower(char32_t c) {
    return c >= U'A' && c <= U'Z' ? c + 32 : c;
}

// One row more than the letters need, as desktops have it.
int rowHeight(int line) {
    return line + line / 3;
}

} // namespace

MenuCaption readMenuCaption(std::string_view caption) {
    MenuCaption read;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == '&' && i + 1 < caption.size()) {
            ++i;
            if (caption[i] != '&' && read.marked == std::string::npos) {
                read.marked = read.text.size();
            }
        }
        read.text += caption[i];
    }
    return read;
}

MenuPane::MenuPane(const std::vector<MenuEntry>& entries, TextPainter& painter, int mostHeight)
    : entries_(entries), painter_(painter), colours_(painter.colours()),
      line_(std::max(1, painter.lineHeight())) {
    int y = kBorder;
    int widest = 0;
    for (const MenuEntry& entry : entries) {
        Row row;
        row.caption = readMenuCaption(entry.caption);
        row.y = y;
        row.height = entry.separator ? std::max(3, line_ / 2) : rowHeight(line_);
        y += row.height;
        widest = std::max(widest, painter.width(row.caption.text));
        rows_.push_back(std::move(row));
    }
    contentHeight_ = y + kBorder;
    // A tick fits on the left, an arrow on the right.
    size_ = {widest + 3 * line_, std::min(contentHeight_, std::max(mostHeight, 5 * line_))};
    scrolled_ = -edge();
}

bool MenuPane::choosable(std::size_t entry) const {
    return !entries_[entry].separator && entries_[entry].enabled;
}

std::optional<std::size_t> MenuPane::entryAt(Point p) const {
    if (!Rect{0, edge(), size_.width, size_.height - 2 * edge()}.contains(p)) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (rowOf(i).contains(p) && choosable(i)) {
            return i;
        }
    }
    return std::nullopt;
}

Rect MenuPane::rowOf(std::size_t entry) const {
    return {kBorder, rows_[entry].y - scrolled_, size_.width - 2 * kBorder, rows_[entry].height};
}

std::optional<std::size_t> MenuPane::next(std::optional<std::size_t> from, int step) const {
    const auto count = static_cast<int>(entries_.size());
    int at = from ? static_cast<int>(*from) : (step > 0 ? -1 : count);
    for (int tried = 0; tried < count; ++tried) {
        at = (at + step + count) % count;
        if (choosable(static_cast<std::size_t>(at))) {
            return static_cast<std::size_t>(at);
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> MenuPane::byLetter(char32_t letter, std::optional<std::size_t> from) const {
    std::optional<std::size_t> at = from;
    for (std::size_t tried = 0; tried < entries_.size(); ++tried) {
        at = next(at, 1);
        if (!at) {
            break;
        }
        const MenuCaption& caption = rows_[*at].caption;
        if (caption.marked < caption.text.size() &&
            lower(static_cast<unsigned char>(caption.text[caption.marked])) == lower(letter)) {
            return at;
        }
    }
    return std::nullopt;
}

int MenuPane::scrollsAt(Point p) const {
    if (!scrolls() || p.x < 0 || p.x >= size_.width) {
        return 0;
    }
    return p.y >= 0 && p.y < edge() ? -1 : p.y >= size_.height - edge() && p.y < size_.height ? 1 : 0;
}

bool MenuPane::scroll(int rows) {
    const int before = scrolled_;
    if (scrolls()) {
        scrolled_ =
            std::clamp(scrolled_ + rows * rowHeight(line_), -edge(), contentHeight_ - size_.height + edge());
    }
    return scrolled_ != before;
}

void MenuPane::reveal(std::size_t entry) {
    const Rect row = rowOf(entry);
    if (row.y < edge()) {
        scrolled_ -= edge() - row.y;
    } else if (row.y + row.height > size_.height - edge()) {
        scrolled_ += row.y + row.height - (size_.height - edge());
    }
}

void MenuPane::draw(const Canvas& canvas, std::optional<std::size_t> highlighted) const {
    const Rect all{0, 0, size_.width, size_.height};
    fill(canvas, all, colours_.background);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!intersection(rowOf(i), all).empty()) {
            drawRow(canvas, i, highlighted == i);
        }
    }
    if (scrolls()) {
        const Rect top{0, 0, size_.width, edge()};
        const Rect bottom{0, size_.height - edge(), size_.width, edge()};
        fill(canvas, top, colours_.background);
        fill(canvas, bottom, colours_.background);
        drawArrow(canvas, top, 0, -1, colours_.text);
        drawArrow(canvas, bottom, 0, 1, colours_.text);
    }
    fill(canvas, {0, 0, size_.width, kBorder}, colours_.border);
    fill(canvas, {0, size_.height - kBorder, size_.width, kBorder}, colours_.border);
    fill(canvas, {0, 0, kBorder, size_.height}, colours_.border);
    fill(canvas, {size_.width - kBorder, 0, kBorder, size_.height}, colours_.border);
}

void MenuPane::drawRow(const Canvas& canvas, std::size_t index, bool highlighted) const {
    const MenuEntry& entry = entries_[index];
    const MenuCaption& caption = rows_[index].caption;
    const Rect row = rowOf(index);
    if (entry.separator) {
        fill(canvas, {row.x + line_ / 2, row.y + row.height / 2, row.width - line_, 1}, colours_.border);
        return;
    }
    if (highlighted) {
        fill(canvas, row, colours_.highlight);
    }
    const Argb colour = !entry.enabled ? colours_.disabledText
                        : highlighted  ? colours_.highlightText
                                       : colours_.text;
    const Point text{row.x + line_ + line_ / 3, row.y + (row.height - line_) / 2};
    painter_.draw(canvas, text, caption.text, colour);
    if (caption.marked < caption.text.size()) {
        const int before = painter_.width(std::string_view(caption.text).substr(0, caption.marked));
        const int letter = painter_.width(std::string_view(caption.text).substr(caption.marked, 1));
        fill(canvas,
             {text.x + before, text.y + line_ - std::max(1, line_ / 12), letter, std::max(1, line_ / 16)},
             colour);
    }
    if (entry.checked) {
        drawTick(canvas, {row.x, row.y, line_ + line_ / 3, row.height}, colour);
    }
    if (!entry.submenu.empty()) {
        drawArrow(canvas, {row.x + row.width - line_, row.y, line_, row.height}, 1, 0, colour);
    }
}

void MenuPane::drawTick(const Canvas& canvas, const Rect& box, Argb colour) const {
    const int arm = std::max(2, line_ / 6);
    const int thickness = std::max(1, line_ / 8);
    const Point corner{box.x + box.width / 2 - arm / 2, box.y + box.height / 2 + arm};
    for (int step = -arm; step <= 2 * arm; ++step) {
        fill(canvas, {corner.x + step, corner.y - std::abs(step) - thickness, 1, 2 * thickness}, colour);
    }
}

// A triangle in the middle of the box that points along (dx, dy).
void MenuPane::drawArrow(const Canvas& canvas, const Rect& box, int dx, int dy, Argb colour) const {
    const int half = std::max(2, line_ / 4);
    const Point middle{box.x + box.width / 2, box.y + box.height / 2};
    for (int step = 0; step <= half; ++step) {
        const int along = half / 2 - step;
        const Rect slice = dx != 0 ? Rect{middle.x + dx * along, middle.y - step, 1, 2 * step + 1}
                                   : Rect{middle.x - step, middle.y + dy * along, 2 * step + 1, 1};
        fill(canvas, slice, colour);
    }
}

} // namespace Platform
