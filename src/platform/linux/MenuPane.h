// One level of a pop-up menu as a picture: where its entries lie, and how they look. Knows no window.
#pragma once

#include "platform/PopupMenu.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Platform {

struct MenuCaption {
    std::string text;
    std::size_t marked = std::string::npos; // where in the text the letter stands that chooses the entry
};

// Takes the "&" out.
MenuCaption readMenuCaption(std::string_view caption);

class MenuPane {
public:
    // Higher menus than `mostHeight` scroll. The entries and the painter must outlive the pane.
    MenuPane(const std::vector<MenuEntry>& entries, TextPainter& painter, int mostHeight);

    Size size() const { return size_; }
    const std::vector<MenuEntry>& entries() const { return entries_; }

    // Those that the user can choose or open.
    std::optional<std::size_t> entryAt(Point p) const;
    Rect rowOf(std::size_t entry) const;
    std::optional<std::size_t> next(std::optional<std::size_t> from, int step) const;
    // The next after `from` that this letter chooses.
    std::optional<std::size_t> byLetter(char32_t letter, std::optional<std::size_t> from) const;

    // -1 at the edge that scrolls up, 1 at the other, 0 elsewhere.
    int scrollsAt(Point p) const;
    // False when it is at the end.
    bool scroll(int rows);
    void reveal(std::size_t entry);

    void draw(const Canvas& canvas, std::optional<std::size_t> highlighted) const;

private:
    struct Row {
        MenuCaption caption;
        int y = 0; // in the whole menu
        int height = 0;
    };

    bool choosable(std::size_t entry) const;
    bool scrolls() const { return contentHeight_ > size_.height; }
    int edge() const { return scrolls() ? line_ : 0; }
    void drawRow(const Canvas& canvas, std::size_t entry, bool highlighted) const;
    void drawTick(const Canvas& canvas, const Rect& box, Argb colour) const;
    void drawArrow(const Canvas& canvas, const Rect& box, int dx, int dy, Argb colour) const;

    const std::vector<MenuEntry>& entries_;
    TextPainter& painter_;
    MenuColours colours_;
    std::vector<Row> rows_;
    int line_;
    int contentHeight_ = 0;
    int scrolled_ = 0; // pixels
    Size size_;
};

} // namespace Platform
