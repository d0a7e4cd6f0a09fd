#include "platform/linux/XCursors.h"

#include "platform/linux/DynamicLibrary.h"

#include <string_view>

namespace Platform {

namespace {

struct Shape {
    const char* name;    // in themes
    std::uint16_t glyph; // in the font "cursor"
};

constexpr std::array<Shape, kCursorCount> kShapes{{
    {"left_ptr", 68},
    {"hand2", 60},
    {"xterm", 152},
    {"crosshair", 34},
    {"fleur", 52},
    {"sb_h_double_arrow", 108},
    {"sb_v_double_arrow", 116},
    {"watch", 150},
    {"crossed_circle", 0},
    {"", 0},
}};

} // namespace

void XCursors::show(xcb_window_t window, Cursor cursor) {
    auto& loaded = loaded_[static_cast<std::size_t>(cursor)];
    if (!loaded) {
        loaded = load(cursor);
    }
    xcb_change_window_attributes(connection_, window, XCB_CW_CURSOR, &loaded);
}

xcb_cursor_t XCursors::load(Cursor cursor) {
    if (cursor == Cursor::hidden) {
        return invisible();
    }
    const Shape& shape = kShapes[static_cast<std::size_t>(cursor)];
    const xcb_cursor_t cursorOfTheme = themed(shape.name);
    return cursorOfTheme ? cursorOfTheme : fromFont(shape.glyph);
}

xcb_cursor_t XCursors::themed(const char* name) {
    struct Context;
    using NewContext = int(xcb_connection_t*, xcb_screen_t*, Context**);
    using LoadCursor = xcb_cursor_t(Context*, const char*);
    using FreeContext = void(Context*);
    static const DynamicLibrary library{"libxcb-cursor.so.0"};
    auto* const newContext = library.function<NewContext>("xcb_cursor_context_new");
    auto* const loadCursor = library.function<LoadCursor>("xcb_cursor_load_cursor");
    auto* const freeContext = library.function<FreeContext>("xcb_cursor_context_free");
    Context* context = nullptr;
    auto screen = connection_.screen();
    if (!newContext || !loadCursor || !freeContext || newContext(connection_, &screen, &context) < 0) {
        return XCB_NONE;
    }
    const xcb_cursor_t cursor = loadCursor(context, name);
    freeContext(context);
    return cursor;
}

xcb_cursor_t XCursors::fromFont(std::uint16_t glyph) {
    constexpr std::string_view kFont = "cursor";
    constexpr std::uint16_t kWhite = 0xFFFF;
    const xcb_font_t font = xcb_generate_id(connection_);
    const xcb_cursor_t cursor = xcb_generate_id(connection_);
    xcb_open_font(connection_, font, static_cast<std::uint16_t>(kFont.size()), kFont.data());
    // Each glyph's mask follows it.
    xcb_create_glyph_cursor(connection_, cursor, font, font, glyph, static_cast<std::uint16_t>(glyph + 1), 0,
                            0, 0, kWhite, kWhite, kWhite);
    xcb_close_font(connection_, font);
    return cursor;
}

xcb_cursor_t XCursors::invisible() {
    constexpr std::uint32_t kNothing = 0;
    const xcb_pixmap_t pixmap = xcb_generate_id(connection_);
    const xcb_gcontext_t context = xcb_generate_id(connection_);
    const xcb_cursor_t cursor = xcb_generate_id(connection_);
    const xcb_rectangle_t all{0, 0, 1, 1};
    xcb_create_pixmap(connection_, 1, pixmap, connection_.screen().root, 1, 1);
    xcb_create_gc(connection_, context, pixmap, XCB_GC_FOREGROUND, &kNothing);
    xcb_poly_fill_rectangle(connection_, pixmap, context, 1, &all);
    xcb_create_cursor(connection_, cursor, pixmap, pixmap, 0, 0, 0, 0, 0, 0, 0, 0);
    xcb_free_gc(connection_, context);
    xcb_free_pixmap(connection_, pixmap);
    return cursor;
}

} // namespace Platform
