// Any text is a layout document: it is loaded, lives for a while under a hand that plays with it, is drawn in
// part, loaded anew at another scale and closed. Names of documents in it lead back to the text itself.
#include "drawing/Surface.h"
#include "images/ImageLibrary.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/ViewFactory.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>

namespace {

struct Documents : Quilt::DocumentSource {
    std::string text;
    std::string obtain(const std::string& name) const override {
        if (name == "none") {
            throw std::runtime_error("No such document: none");
        }
        return text;
    }
};

struct Surroundings : Quilt::Desktop, Quilt::EditorHost, Quilt::Clock {
    std::chrono::milliseconds time{0};

    void showMessage(const Quilt::Message& message,
                     std::function<void(Quilt::MessageButton)> answer) override {
        if (message.defaultButton >= message.buttons.size()) {
            std::abort();
        }
        answer(message.buttons[message.defaultButton]);
    }
    void popUpMenu(const std::vector<Quilt::MenuItem>&, std::optional<Quilt::Rectangle>,
                   std::function<void(std::optional<int>)> chosen) override {
        chosen(1);
    }
    void launch(const std::string&) override {}
    std::optional<std::string> clipboardText() override { return std::nullopt; }
    void setClipboardText(const std::string&) override {}
    void log(const std::string&) override {}
    std::chrono::milliseconds now() const override { return time; }
};

void check(const Quilt::View& view) {
    if (view.bounds().width < 0 || view.bounds().height < 0) {
        std::abort();
    }
    for (const auto& child : view.children()) {
        check(*child);
    }
}

// Presses, drags, turns and types here and there. Where depends on the text alone, so that failures repeat.
void play(Quilt::Editor& editor, Surroundings& surroundings, std::uint32_t seed) {
    std::minstd_rand random(seed);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    Drawing::Surface picture(160, 120);
    for (int i = 0; i < 12; ++i) {
        Quilt::MouseEvent mouse;
        mouse.at = {below(600), below(420)};
        mouse.button = static_cast<Quilt::MouseButton>(below(3));
        mouse.clicks = 1 + below(2);
        mouse.modifiers.shift = below(2) == 0;
        editor.mouseMoved(mouse);
        editor.mousePressed(mouse);
        if (below(3) > 0) {
            surroundings.time += std::chrono::milliseconds(below(700));
            editor.tick();
        }
        Quilt::KeyEvent key;
        key.key = static_cast<Quilt::Key>(below(14));
        key.character = key.key == Quilt::Key::character ? U'0' + static_cast<char32_t>(below(60)) : 0;
        editor.key(key);
        mouse.at = {below(600), below(420)};
        editor.mouseMoved(mouse);
        if (below(4) > 0) {
            editor.mouseReleased(mouse);
        }
        editor.wheel({mouse.at, 1.0 - below(3), mouse.modifiers});
        editor.draw(picture.view(), {below(100), below(80), 40, 40});
    }
    editor.captureLost();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A document that shows itself twice has a million views on its twentieth level: the size of a text
    // bounds what is read of it, not how often.
    constexpr std::size_t kLongest = 4096;
    if (size > kLongest) {
        return 0;
    }
    static const auto views = Quilt::standardViews();
    Documents documents;
    documents.text.assign(reinterpret_cast<const char*>(data), size);
    Surroundings surroundings;
    Images::ImageLibrary images;
    Quilt::Editor editor({documents, views, images, surroundings, surroundings, surroundings});
    editor.open("main", {0, 0, 470, 320});
    for (int i = 0; i < 3; ++i) {
        surroundings.time += std::chrono::milliseconds(100);
        editor.tick();
    }
    check(*editor.root());
    const auto seed = static_cast<std::uint32_t>(std::hash<std::string>()(documents.text));
    play(editor, surroundings, seed);
    editor.variables().set("uiScale", "5/4");
    editor.tick();
    check(*editor.root());
    play(editor, surroundings, seed + 1);
    return 0;
}
