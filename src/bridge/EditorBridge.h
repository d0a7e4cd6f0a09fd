// Where the editor meets the effect: the framework's variables and actions, by name, on top of one effect
// instance. It lives as long as an editor, or as the command that drives one without a window.
#pragma once

#include "bridge/EditorActions.h"
#include "bridge/EditorVariables.h"
#include "bridge/Environment.h"
#include "bridge/MidiLearn.h"

#include "instance/EffectInstance.h"
#include "metatext/StringTable.h"
#include "quilt/ActionHandler.h"
#include "quilt/VariableProvider.h"

#include <array>
#include <cstdint>

namespace Bridge {

class EditorBridge final : public Quilt::VariableProvider,
                           public Quilt::ActionHandler {
public:
    // All must outlive the bridge.
    EditorBridge(Shell::EffectInstance& effect, Environment& environment, const Quilt::StringTable& strings);
    ~EditorBridge() override;

    std::optional<std::string> get(std::string_view name) const override { return variables_.get(name); }
    bool set(std::string_view name, std::string_view value) override;
    std::uint64_t changeCount() const override;
    void beginGesture(std::string_view name) override;
    void endGesture(std::string_view name) override;
    std::optional<std::string> translate(std::string_view text) const override;

    void perform(std::string_view action, std::string_view params, Quilt::ActionContext& context) override;
    Quilt::ActionState state(std::string_view action, std::string_view params,
                             const Quilt::ActionContext& context) const override;

    // Call it on every idle of the host's, after the instance's own.
    void idle() { learn_.poll(); }

    Shell::EffectInstance& effect() { return effect_; }
    MidiLearn& midiLearn() { return learn_; }
    const Quilt::Scale& scale() const { return variables_.scale(); }

private:
    // What variables depend on, as far as it changes behind the bridge's back.
    struct Seen {
        std::array<std::uint32_t, Parameters::kFeedbackNames.size()> feedbacks{};
        std::uint32_t changeStamp = 0;
        unsigned replacements = 0;
        int program = 0;
        bool enabled = false;

        bool operator==(const Seen&) const = default;
    };
    Seen look() const;

    // What the effect's model asks of an editor.
    class Services final : public Shell::EditorServices {
    public:
        explicit Services(const EditorBridge& bridge) : bridge_(bridge) {}
        std::string translate(std::string_view text) const override { return bridge_.strings_.translate(text); }
        std::string clipboardText() const override { return bridge_.environment_.clipboardText(); }
        void setClipboardText(const std::string& text) override {
            bridge_.environment_.setClipboardText(text);
        }

    private:
        const EditorBridge& bridge_;
    };

    Shell::EffectInstance& effect_;
    Environment& environment_;
    const Quilt::StringTable& strings_;
    MidiLearn learn_;
    EditorVariables variables_;
    EditorActions actions_;
    Services services_{*this};
    mutable Seen seen_;
    mutable std::uint64_t changes_ = 1;
};

} // namespace Bridge
