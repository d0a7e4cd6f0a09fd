#include "editor/PluginEditor.h"

#include "editor/EditorDesktop.h"
#include "editor/EditorSession.h"

#include "model/Product.h"

#include <utility>

namespace Shell {

PluginEditor::PluginEditor(EffectInstance& effect) : effect_(effect) {}

PluginEditor::~PluginEditor() = default;

EditorSize PluginEditor::size() {
    if (session_) {
        return session_->size();
    }
    return EditorSession::sizeWhenOpened(effect_);
}

void PluginEditor::open(void* parent) {
    close();
    session_ = std::make_shared<EditorSession>(effect_, reinterpret_cast<Platform::NativeWindow>(parent));
}

void PluginEditor::openTopLevel() {
    close();
    session_ = std::make_shared<EditorSession>(effect_, std::string(Model::kProductName));
}

void PluginEditor::close() noexcept {
    if (const auto session = std::move(session_)) {
        session->close();
    }
}

void PluginEditor::idle() {
    if (const auto session = session_) {
        session->idle();
        if (session->finished() && session == session_) {
            close();
        }
    }
}

bool PluginEditor::keyDown(const Platform::KeyEvent& key) {
    return session_ && session_->keyDown(key);
}

std::unique_ptr<Editor> makePluginEditor(EffectInstance& effect) {
    return std::make_unique<PluginEditor>(effect);
}

} // namespace Shell
