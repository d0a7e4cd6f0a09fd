// What an editor draws and how it answers to a hand, for tests.
#pragma once

#include "TestEditor.h"

#include "drawing/Surface.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace TestEditor {

// A rig with a surface of 40 x 40 units and something to write into.
struct SurfaceRig : Rig {
    Drawing::Surface surface;

    explicit SurfaceRig(const std::string& shown, const std::string& more = {},
                        const std::string& scale = "1/1") {
        provider.values = {{"v", "0.5"},     {"w", "0"},      {"v.text", "0.50"}, {"page", "a"},
                           {"flag", "true"}, {"locked", "0"}, {"uiScale", scale}};
        open("bounds: { 0, 0, 40, 40 } views: { " + shown + " } " + more);
    }

    // All of it, anew.
    Drawing::Surface& draw() {
        surface = Drawing::Surface(host.width, host.height);
        editor.draw(surface.view(), {0, 0, host.width, host.height});
        return surface;
    }
    std::uint32_t pixel(int x, int y) { return draw().view().at(x, y); }

    // The smallest rectangle around what is not black.
    Rectangle ink() {
        const auto view = draw().view();
        int left = view.width;
        int top = view.height;
        int right = 0;
        int bottom = 0;
        for (int y = 0; y < view.height; ++y) {
            for (int x = 0; x < view.width; ++x) {
                if (view.at(x, y) != 0xFF000000) {
                    left = std::min(left, x);
                    top = std::min(top, y);
                    right = std::max(right, x + 1);
                    bottom = std::max(bottom, y + 1);
                }
            }
        }
        return right > left ? Rectangle{left, top, right - left, bottom - top} : Rectangle{};
    }

    static Quilt::MouseEvent at(int x, int y, Quilt::Modifiers modifiers = {}) {
        Quilt::MouseEvent event;
        event.at = {x, y};
        event.modifiers = modifiers;
        return event;
    }
    void move(int x, int y, Quilt::Modifiers modifiers = {}) { editor.mouseMoved(at(x, y, modifiers)); }
    void press(int x, int y, int clicks = 1, Quilt::MouseButton button = Quilt::MouseButton::left) {
        auto event = at(x, y);
        event.clicks = clicks;
        event.button = button;
        editor.mousePressed(event);
    }
    void release(int x, int y) { editor.mouseReleased(at(x, y)); }
    void click(int x, int y) {
        press(x, y);
        release(x, y);
    }
    bool wheel(int x, int y, double steps, Quilt::Modifiers modifiers = {}) {
        return editor.wheel({{x, y}, steps, modifiers});
    }
    bool key(Quilt::Key key, Quilt::Modifiers modifiers = {}) { return editor.key({key, 0, modifiers}); }
    bool type(const std::string& text, Quilt::Modifiers modifiers = {}) {
        bool used = true;
        for (const char c : text) {
            used = editor.key({Quilt::Key::character, static_cast<char32_t>(c), modifiers}) && used;
        }
        return used;
    }
};

constexpr Quilt::Modifiers kShift{.shift = true};
constexpr Quilt::Modifiers kControl{.control = true};

constexpr std::uint32_t kNothing = 0xFF000000;
constexpr std::uint32_t kRed = 0xFFFF0000;
constexpr std::uint32_t kLime = 0xFF00FF00;
constexpr std::uint32_t kBlue = 0xFF0000FF;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

// Images of 8 x 8 units; the second has two frames, red and blue.
inline const std::string kRedImage =
    R"({ ovsCode: "FORMAT OVS-2 requires:ZEKT-1; BOUNDS 0,0,8,8; FILL #ff0000; RECT 0,0,8,8" })";
inline const std::string kFilm =
    R"({ image: { ovsCode: "FORMAT OVS-2 requires:ZEKT-1; BOUNDS 0,0,8,16; FILL #ff0000; RECT 0,0,8,8; FILL #0000ff; RECT 0,8,8,8" }, frames: 2 })";

} // namespace TestEditor
