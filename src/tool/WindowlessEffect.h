// One effect instance with the editor's bridge and no window, for commands that work on variables and actions or
// draw layouts. What would go through a desktop is answered from variables of the instance.
#pragma once

#include "bridge/EditorBridge.h"
#include "bridge/Environment.h"
#include "instance/EffectInstance.h"
#include "metatext/StringTable.h"
#include "model/TextFiles.h"
#include "platform/MemoryClipboard.h"
#include "platform/SharedFile.h"

#include <filesystem>
#include <functional>
#include <span>
#include <string>

namespace Tool {

// Where preferences are kept: a folder of the user's, or an empty one that is gone afterwards.
class PreferencesFolder {
public:
    explicit PreferencesFolder(const std::string& given = {});
    ~PreferencesFolder();
    PreferencesFolder(const PreferencesFolder&) = delete;
    PreferencesFolder& operator=(const PreferencesFolder&) = delete;

    std::filesystem::path file() const { return path_ / "preferences"; }

private:
    std::filesystem::path path_;
    bool temporary_;
};

// A host that says what it is told, and lets the editor's window grow.
class SayingHost final : public Shell::Host {
public:
    using Say = std::function<void(const std::string& line)>;

    explicit SayingHost(Say say) : say_(std::move(say)) {}

    const Shell::HostIdentity& identity() const override { return identity_; }
    void automate(int parameter, float value) override;
    void beginEdit(int) override {}
    void endEdit(int) override {}
    void updateDisplay() override { say_("host: updateDisplay"); }
    bool sizeWindow(int width, int height) override;
    Shell::HostTransport transport() noexcept override { return {}; }

private:
    Say say_;
    Shell::HostIdentity identity_{"Korvanta", "murmelon", 0, true};
};

class WindowlessEffect final : private Bridge::Environment {
public:
    // `preferences` as above. The effect is resumed; what it found wrong at its start goes to standard error.
    WindowlessEffect(const std::string& preferences, SayingHost::Say hostSays);

    Shell::EffectInstance& effect() { return effect_; }
    Bridge::EditorBridge& bridge() { return bridge_; }
    const Bridge::EditorBridge& bridge() const { return bridge_; }
    const Quilt::StringTable& strings() const { return strings_; }
    Platform::Clipboard& clipboard() { return clipboard_; }

    // The block goes in on both sides; what comes out nobody hears, it overwrites the block.
    void hear(std::span<float> block);

    // instance.NAME
    std::string answer(std::string_view name) const;

    // Where actions are carried out that follow on another.
    void setContext(Quilt::ActionContext& context) { context_ = &context; }

private:
    void chooseFile(const Bridge::FileQuestion& question, Chosen chosen) override;
    std::string clipboardText() override { return clipboard_.text(); }
    void setClipboardText(const std::string& text) override { clipboard_.setText(text); }
    void tellUser(const std::string& message) override;
    void perform(std::string_view action, std::string_view params) override;
    void reloadEditor() override {} // whoever shows layouts watches the scale

    PreferencesFolder folder_;
    Platform::SharedFile record_;
    Model::DiskFiles files_;
    SayingHost host_;
    Shell::EffectInstance effect_;
    Quilt::StringTable strings_;
    Platform::MemoryClipboard clipboard_;
    Bridge::EditorBridge bridge_;
    Quilt::ActionContext* context_ = nullptr;
};

} // namespace Tool
