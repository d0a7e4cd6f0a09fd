// The editor: the layouts of the binary in a window that the host gives, on top of one effect instance. Opening
// makes everything anew, closing lets go of it all; an editor that is not open costs nothing.
#pragma once

#include "instance/Editor.h"
#include "instance/EffectInstance.h"
#include "platform/Window.h"

#include <memory>

namespace Shell {

class EditorSession;

class PluginEditor final : public Editor {
public:
    explicit PluginEditor(EffectInstance& effect);
    ~PluginEditor() override;

    EditorSize size() override;
    void open(void* parent) override;
    // In a window of its own; `closed()` tells when the user has closed it.
    void openTopLevel();
    void close() noexcept override;
    void idle() override;
    bool keyDown(const Platform::KeyEvent& key) override;

    bool closed() const { return session_ == nullptr; }

private:
    EffectInstance& effect_;
    std::shared_ptr<EditorSession> session_; // from opening to closing
};

// For the plug-in.
std::unique_ptr<Editor> makePluginEditor(EffectInstance& effect);

} // namespace Shell
