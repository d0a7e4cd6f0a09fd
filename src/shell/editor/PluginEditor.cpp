#include "editor/PluginEditor.h"

#include "editor/EditorDesktop.h"
#include "editor/EditorSession.h"

#include "model/Product.h"

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
    session_ = std::make_unique<EditorSession>(effect_, reinterpret_cast<Platform::NativeWindow>(parent));
}

void PluginEditor::openTopLevel() {
    close();
    session_ = std::make_unique<EditorSession>(effect_, std::string(Model::kProductName));
}

void PluginEditor::close() noexcept {
    session_.reset();
}

void PluginEditor::idle() {
    if (session_) {
        session_->idle();
        if (session_->finished()) {
            session_.reset();
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
