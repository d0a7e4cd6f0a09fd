// `murmelon bridge`: one effect instance with no window, driven by lines of text through the editor's variables
// and actions. What would go through a desktop is answered from variables: a file dialog with the path in
// instance.dialogAnswer, a menu with the item whose caption is in instance.menuAnswer.
#include "tool/Commands.h"

#include "bridge/NumberText.h"
#include "metatext/MetaText.h"
#include "notation/Quoting.h"
#include "tool/ErrorLine.h"
#include "tool/WindowlessEffect.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <memory>
#include <numbers>
#include <span>
#include <stdexcept>
#include <string>

namespace Tool {

namespace {

constexpr int kBlock = 512;
constexpr float kHalfLevel = 0.5f;
constexpr long long kMostSamples = 1'000'000'000;

void say(const std::string& line) {
    std::cout << line << '\n';
}

// What a user at the desktop would answer, from variables of the instance.
class AnsweringDesktop final : public Quilt::Desktop {
public:
    explicit AnsweringDesktop(WindowlessEffect& effect) : effect_(effect) {}

    void showMessage(const Quilt::Message& message, std::function<void(Quilt::MessageButton)> done) override {
        std::cerr << message.text << '\n';
        done(message.buttons.at(message.defaultButton));
    }
    void popUpMenu(const std::vector<Quilt::MenuItem>& items, std::optional<Quilt::Rectangle>,
                   std::function<void(std::optional<int>)> chosen) override {
        const std::string caption = effect_.answer("menuAnswer");
        const auto item = std::ranges::find_if(items, [&](const Quilt::MenuItem& candidate) {
            return candidate.enabled && !candidate.caption.empty() && candidate.caption == caption;
        });
        chosen(item == items.end() ? std::nullopt : std::optional(item->id));
    }
    void launch(const std::string& address) override {
        throw std::runtime_error("There is no desktop to open " + address);
    }
    std::optional<std::string> clipboardText() override { return effect_.clipboard().text(); }
    void setClipboardText(const std::string& text) override { effect_.clipboard().setText(text); }

private:
    WindowlessEffect& effect_;
};

class Session final : private Quilt::ActionContext {
public:
    explicit Session(const std::string& preferences) : windowless_(preferences, say) {
        windowless_.setContext(*this);
    }

    // The answer to a line.
    std::string answer(const std::string& line) {
        const auto [command, rest] = firstWord(line);
        if (command == "get") {
            return Stackbrace::quote(required(rest));
        }
        if (command == "set") {
            const auto [name, value] = firstWord(rest);
            set(name, Stackbrace::unquote(value));
            return "ok";
        }
        if (command == "do") {
            const auto [action, params] = firstWord(rest);
            perform(action, params);
            return "ok";
        }
        if (command == "enabled" || command == "checked") {
            const auto [action, params] = firstWord(rest);
            const Quilt::ActionState state = bridge_.state(action, params, *this);
            return (command == "enabled" ? state.enabled : state.checked) ? "true" : "false";
        }
        if (command == "midi") {
            receive(rest);
            return "ok";
        }
        if (command == "process") {
            process(rest);
            return "ok";
        }
        if (command == "clipboard") {
            if (rest.empty()) {
                return Stackbrace::quote(windowless_.clipboard().text());
            }
            windowless_.clipboard().setText(Stackbrace::unquote(rest));
            return "ok";
        }
        throw std::runtime_error("Unknown command: " + command);
    }

private:
    static std::pair<std::string, std::string> firstWord(const std::string& line) {
        const auto begin = std::min(line.find_first_not_of(" \t"), line.size());
        const auto end = std::min(line.find_first_of(" \t", begin), line.size());
        const auto rest = std::min(line.find_first_not_of(" \t", end), line.size());
        return {line.substr(begin, end - begin), line.substr(rest)};
    }

    std::string required(const std::string& name) const {
        if (auto value = get(name)) {
            return *std::move(value);
        }
        throw std::runtime_error("Unknown variable: " + name);
    }

    static int number(const std::string& word, long long least, long long most) {
        const auto value = Bridge::wholeNumberOf(word);
        if (!value || *value < least || *value > most) {
            throw std::runtime_error("Invalid number: " + word);
        }
        return *value;
    }

    void receive(std::string rest) {
        std::array<std::uint8_t, 3> bytes{};
        for (std::uint8_t& byte : bytes) {
            auto [word, behind] = firstWord(rest);
            byte = static_cast<std::uint8_t>(number(word, 0, 255));
            rest = std::move(behind);
        }
        if (!rest.empty()) {
            throw std::runtime_error("A MIDI message has three bytes here: " + rest);
        }
        effect_.audio().receive({0, bytes[0], bytes[1], bytes[2]});
    }

    void process(const std::string& rest) {
        const auto [count, frequencyText] = firstWord(rest);
        const auto frequency = frequencyText.empty() ? std::optional(0.0f) : Bridge::numberOf(frequencyText);
        if (!frequency || *frequency < 0) {
            throw std::runtime_error("Invalid number: " + frequencyText);
        }
        const double step = static_cast<double>(*frequency) / effect_.audio().sampleRate();
        for (int left = number(count, 0, kMostSamples); left > 0;) {
            const int samples = std::min(left, kBlock);
            std::array<float, kBlock> sound{};
            for (int i = 0; i < samples && step > 0; ++i) {
                sound[static_cast<std::size_t>(i)] =
                    kHalfLevel * static_cast<float>(std::sin(2 * std::numbers::pi * phase_));
                phase_ = std::fmod(phase_ + step, 1.0);
            }
            windowless_.hear(std::span(sound).first(static_cast<std::size_t>(samples)));
            left -= samples;
        }
        effect_.idle();
        bridge_.idle();
    }

    // Quilt::ActionContext
    std::optional<std::string> get(std::string_view name) const override { return bridge_.get(name); }
    void set(std::string_view name, std::string_view value) override {
        if (!bridge_.set(name, value)) {
            throw std::runtime_error("Unknown variable: " + std::string(name));
        }
    }
    std::string expandMetaText(std::string_view text) const override {
        return Quilt::expandMetaText(text, {[this](const std::string& name) { return required(name); },
                                            [this](const std::string& source) { return translate(source); }});
    }
    std::string translate(std::string_view text) const override { return windowless_.strings().translate(text); }
    void perform(std::string_view action, std::string_view params) override {
        bridge_.perform(action, params, *this);
    }
    Quilt::Desktop& desktop() override { return desktop_; }
    std::optional<Quilt::Rectangle> anchor() const override { return std::nullopt; }

    WindowlessEffect windowless_;
    Bridge::EditorBridge& bridge_ = windowless_.bridge();
    Shell::EffectInstance& effect_ = windowless_.effect();
    AnsweringDesktop desktop_{windowless_};
    double phase_ = 0; // of the sine, in turns
};

void run(const std::string& preferences) {
    Session session(preferences);
    for (std::string line; std::getline(std::cin, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        if (line.find_first_not_of(" \t") == std::string::npos) {
            continue;
        }
        try {
            say(session.answer(line));
        } catch (const std::exception& error) {
            say("error: " + oneLine(error.what()));
        }
        std::cout.flush(); // somebody may be waiting for the answer before asking the next
        if (!std::cout) {
            return; // nobody gets the answers any more
        }
    }
}

} // namespace

void addBridgeCommand(CLI::App& program) {
    const auto preferences = std::make_shared<std::string>();
    CLI::App* command = program.add_subcommand(
        "bridge", "Drives an effect without a window: reads commands from standard input, answers each.");
    command->add_option("--preferences", *preferences,
                        "The folder for preferences (default: an empty one that is removed afterwards)");
    command->callback([preferences] { run(*preferences); });
}

} // namespace Tool
