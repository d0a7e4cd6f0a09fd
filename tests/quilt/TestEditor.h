// An editor with everything around it in the test's hands.
#pragma once

#include "images/ImageLibrary.h"
#include "quilt/ActionHandler.h"
#include "quilt/Document.h"
#include "quilt/Editor.h"
#include "quilt/View.h"
#include "quilt/ViewFactory.h"

#include <cmath>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace TestEditor {

using Quilt::Rectangle;
using Strings = std::vector<std::string>;

struct Documents : Quilt::DocumentSource {
    std::map<std::string, std::string> texts;

    std::string obtain(const std::string& name) const override {
        const auto found = texts.find(name);
        if (found == texts.end()) {
            throw std::runtime_error("No such document: " + name);
        }
        return found->second;
    }
};

struct HandClock : Quilt::Clock {
    std::chrono::milliseconds time{1000};
    std::chrono::milliseconds now() const override { return time; }
};

// Notes what it is asked and answers at once, unless told to wait.
struct Desktop : Quilt::Desktop {
    Strings messages;
    std::vector<Quilt::Message> boxes;
    Quilt::MessageButton button = Quilt::MessageButton::ok;
    std::vector<std::function<void(Quilt::MessageButton)>> waiting;
    bool wait = false;
    std::vector<Quilt::MenuItem> menu;
    std::optional<Rectangle> menuAnchor;
    std::optional<int> choice;
    Strings launched;
    std::optional<std::string> clipboard;

    void showMessage(const Quilt::Message& message,
                     std::function<void(Quilt::MessageButton)> answer) override {
        messages.push_back(message.text);
        boxes.push_back(message);
        if (wait) {
            waiting.push_back(std::move(answer));
        } else {
            answer(button);
        }
    }
    void popUpMenu(const std::vector<Quilt::MenuItem>& items, std::optional<Rectangle> anchor,
                   std::function<void(std::optional<int>)> chosen) override {
        menu = items;
        menuAnchor = anchor;
        chosen(choice);
    }
    void launch(const std::string& address) override { launched.push_back(address); }
    std::optional<std::string> clipboardText() override { return clipboard; }
    void setClipboardText(const std::string& text) override { clipboard = text; }
};

struct Host : Quilt::EditorHost {
    Strings logged;
    std::vector<Rectangle> dirty;
    Quilt::Cursor cursor = Quilt::Cursor::arrow;
    int width = 0;
    int height = 0;

    void log(const std::string& line) override { logged.push_back(line); }
    void resized(std::int32_t w, std::int32_t h) override {
        width = w;
        height = h;
    }
    void invalidate(const Rectangle& part) override { dirty.push_back(part); }
    void setCursor(Quilt::Cursor shape) override { cursor = shape; }
};

// Owns the names that are in `values` from the start; "locked" ones refuse writes.
struct Provider : Quilt::VariableProvider {
    std::map<std::string, std::string, std::less<>> values;
    Strings gestures;
    std::uint64_t changes = 0;
    mutable int reads = 0;

    std::optional<std::string> get(std::string_view name) const override {
        ++reads;
        const auto found = values.find(name);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    bool set(std::string_view name, std::string_view value) override {
        const auto found = values.find(name);
        if (found == values.end()) {
            return false;
        }
        if (name.starts_with("locked")) {
            throw std::runtime_error("Variable is read-only: " + std::string(name));
        }
        found->second = value;
        ++changes;
        return true;
    }
    std::uint64_t changeCount() const override { return changes; }
    void beginGesture(std::string_view name) override { gestures.push_back("begin " + std::string(name)); }
    void endGesture(std::string_view name) override { gestures.push_back("end " + std::string(name)); }
    std::optional<std::string> translate(std::string_view text) const override {
        return text == "Gruss" ? std::optional<std::string>("greeting") : std::nullopt;
    }
};

// Knows "note", which it notes with its parameters; "off" and "on", whose states these are; "fail".
struct Actions : Quilt::ActionHandler {
    Strings performed;

    void perform(std::string_view action, std::string_view params, Quilt::ActionContext&) override {
        if (action == "fail") {
            throw std::runtime_error("Failed as told");
        }
        if (action != "note" && action != "on" && action != "off") {
            throw std::runtime_error("Unrecognized action: " + std::string(action));
        }
        performed.push_back(std::string(action) + (params.empty() ? "" : " ") + std::string(params));
    }
    Quilt::ActionState state(std::string_view action, std::string_view,
                             const Quilt::ActionContext&) const override {
        return {action != "off", action == "on"};
    }
    Strings take() { return std::exchange(performed, {}); }
};

struct Rig {
    Documents documents;
    Quilt::ViewFactory views = Quilt::standardViews();
    Desktop desktop;
    Host host;
    HandClock clock;
    Provider provider;
    Actions actions;
    Images::ImageLibrary images;
    Quilt::Editor editor{{documents, views, images, desktop, host, clock, &provider, &actions}};

    void open(const std::string& text, bool reload = false) {
        documents.texts["main"] = text;
        editor.open("main", {0, 0, 470, 320}, reload);
    }
    // Time goes on by so much, in one step.
    void pass(int milliseconds) {
        clock.time += std::chrono::milliseconds(milliseconds);
        editor.tick();
    }
    std::string variable(const std::string& name) { return editor.variables().find(name).value_or("(none)"); }
    void perform(const std::string& action, const std::string& params) {
        editor.document()->perform(action, params);
        editor.settle();
        editor.tick();
    }
};

// "type [l t w h]{ children }", for comparing whole trees.
inline std::string treeText(const Quilt::View& view) {
    std::string text;
    for (const auto& child : view.children()) {
        const auto& [left, top, width, height] = child->bounds();
        text += (text.empty() ? "" : ", ") + std::string(child->type()) + " [" + std::to_string(left) + " " +
                std::to_string(top) + " " + std::to_string(width) + " " + std::to_string(height) + "]";
        if (const auto nested = treeText(*child); !nested.empty()) {
            text += " { " + nested + " }";
        }
    }
    return text;
}

} // namespace TestEditor
