#include "quilt/View.h"
#include "quilt/views/Rows.h"
#include "quilt/views/Views.h"

namespace Quilt {

namespace {

using namespace Rows;

constexpr Property kCaption[] = {
    {"wrap", boolean, "false", "Whether lines that are too long are broken between words, else cut with an ellipsis."},
};

constexpr Property kBubble[] = {
    {"delay", number, "0.6", "Seconds that the mouse has to rest before the bubble comes.", "", 0, 60},
};

constexpr Property kConsole[] = {
    {"text", text, "", "What is written: lines, the last ones in sight.", "", 0, 0, true},
    {"font", font, "", "The font; without one the framework's monospace."},
    {"color", color, "", "Of the text, in place of the font's own."},
};

} // namespace

ViewType captionType() {
    return {"caption", "A text.", {kText, kCaption, kBox}, make<View>};
}

ViewType bubbleType() {
    return {"bubble", "A note beside the mouse while it rests over a view with a hint. Without a text it shows the hint.",
            {kText, kBubble, kBox}, make<View>};
}

ViewType consoleType() {
    return {"console", "Lines of text that scroll with the wheel.", {kConsole, kBox}, make<View>};
}

} // namespace Quilt
