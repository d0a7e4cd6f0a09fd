// An effect with its bridge, and surroundings that stay in memory.
#pragma once

#include "bridge/EditorBridge.h"
#include "metatext/StringTable.h"
#include "model/FilesInMemory.h"
#include "platform/MemoryRecord.h"

#include <functional>
#include <stdexcept>
#include <utility>
#include <string>
#include <vector>

namespace BridgeTest {

struct SilentHost final : Shell::Host {
    const Shell::HostIdentity& identity() const override { return identity_; }
    void automate(int, float) override { ++automations; }
    void beginEdit(int) override { ++begun; }
    void endEdit(int) override { ++ended; }
    void updateDisplay() override {
        if (onUpdateDisplay) {
            onUpdateDisplay();
        }
    }
    bool sizeWindow(int, int) override { return identity_.sizesWindow; }
    Shell::HostTransport transport() noexcept override { return {}; }

    Shell::HostIdentity identity_;
    std::function<void()> onUpdateDisplay;
    int automations = 0;
    int begun = 0;
    int ended = 0;
};

class Effect final : public Bridge::Environment, public Quilt::ActionContext {
public:
    explicit Effect(Platform::SharedRecord& preferences)
        : instance(host, {preferences, files, {}}), bridge(instance, *this, strings_) {
        instance.resume();
    }

    // The error's text; empty when it went well.
    std::string tryTo(const std::function<void()>& what) {
        try {
            what();
            return {};
        } catch (const std::exception& error) {
            return error.what();
        }
    }
    std::string act(std::string_view action, std::string_view params = {}) {
        return tryTo([&] { bridge.perform(action, params, *this); });
    }
    std::string write(std::string_view name, std::string_view value) {
        return tryTo([&] { set(name, value); });
    }
    std::string value(std::string_view name) const { return bridge.get(name).value_or("(unknown)"); }

    void process(int samples) {
        std::vector<float> sound(static_cast<std::size_t>(samples));
        const std::array<float*, 2> buffers = {sound.data(), sound.data()};
        Shell::AudioBuffers audio;
        audio.in = buffers.data();
        audio.out = buffers.data();
        audio.samples = samples;
        instance.process(audio);
        instance.idle();
        bridge.idle();
    }

    // Bridge::Environment
    void chooseFile(const Bridge::FileQuestion&, Chosen chosen) override {
        if (!dialogAnswer.empty()) {
            chosen(dialogAnswer);
        }
    }
    std::string clipboardText() override { return clipboard; }
    void setClipboardText(const std::string& text) override { clipboard = text; }
    void tellUser(const std::string& message) override { told.push_back(message); }
    void reloadEditor() override { ++reloads; }

    // Quilt::ActionContext
    std::optional<std::string> get(std::string_view name) const override { return bridge.get(name); }
    void set(std::string_view name, std::string_view value) override {
        if (!bridge.set(name, value)) {
            throw std::runtime_error("Unknown variable");
        }
    }
    std::string expandMetaText(std::string_view text) const override { return std::string(text); }
    std::string translate(std::string_view text) const override { return std::string(text); }
    void perform(std::string_view action, std::string_view params) override {
        bridge.perform(action, params, *this);
    }
    Quilt::Desktop& desktop() override { return menus_; }
    std::optional<Quilt::Rectangle> anchor() const override { return std::nullopt; }

    SilentHost host;
    FilesInMemory files{"folder"};
    std::filesystem::path dialogAnswer;
    std::string clipboard;
    std::vector<std::string> told;
    int reloads = 0;

private:
    // Chooses the item that the random walk has in mind, or none.
    struct Menus final : Quilt::Desktop {
        void showMessage(const Quilt::Message&, std::function<void(Quilt::MessageButton)>) override {}
        void popUpMenu(const std::vector<Quilt::MenuItem>& items, std::optional<Quilt::Rectangle>,
                       std::function<void(std::optional<int>)> chosen) override {
            const std::size_t index = std::exchange(choice, kNone); // a menu that follows is dismissed
            chosen(index < items.size() && items[index].enabled ? std::optional(items[index].id) : std::nullopt);
        }
        void launch(const std::string&) override {}
        std::optional<std::string> clipboardText() override { return std::nullopt; }
        void setClipboardText(const std::string&) override {}

        static constexpr std::size_t kNone = 1000;
        std::size_t choice = kNone;
    };

    Quilt::StringTable strings_;
    Menus menus_;

public:
    Shell::EffectInstance instance;
    Bridge::EditorBridge bridge;

    void chooseMenuItem(std::size_t index) { menus_.choice = index; }
};

} // namespace BridgeTest
