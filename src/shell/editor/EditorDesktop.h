// The desktop as the editor's layouts and its bridge to the effect see it: menus, message boxes, file dialogs,
// the clipboard, the browser. Everything that is open is polled from the host's idle. Nothing here waits, but on
// Windows for what the system shows, which lets the host call whatever it likes meanwhile.
#pragma once

#include "bridge/Environment.h"
#include "platform/Clipboard.h"
#include "platform/FileDialog.h"
#include "platform/MessageDialog.h"
#include "platform/PopupMenu.h"
#include "platform/TextPainter.h"
#include "quilt/Desktop.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace Shell {

class EditorDesktop final : public Quilt::Desktop {
public:
    // `failed` is told what goes wrong when nobody is there to throw at.
    EditorDesktop(Platform::TextPainter& painter, std::function<void(const std::string&)> failed);

    // nullptr: the editor has none any more; what was open is gone.
    void setWindow(Platform::Window* window);

    // Quilt::Desktop
    void showMessage(const Quilt::Message& message, std::function<void(Quilt::MessageButton)> answer) override;
    void popUpMenu(const std::vector<Quilt::MenuItem>& items, std::optional<Quilt::Rectangle> anchor,
                   std::function<void(std::optional<int>)> chosen) override;
    void launch(const std::string& address) override;
    std::optional<std::string> clipboardText() override;
    void setClipboardText(const std::string& text) override;

    void chooseFile(const Bridge::FileQuestion& question, Bridge::Environment::Chosen chosen);

    // Answers what has been answered on the screen. The desktop must outlive the call.
    void poll();
    // It is in a call that waits for the user, and nothing else is under way.
    bool waitsForUser() const { return waitsForUser_; }

    // The mouse is where menus without an anchor belong.
    void setMouse(Platform::Point at) { mouse_ = at; }

private:
    struct WaitingMessage {
        Quilt::Message message;
        std::function<void(Quilt::MessageButton)> answer;
    };

    Platform::NativeWindow nativeWindow() const { return window_ != nullptr ? window_->nativeId() : 0; }
    void showNextMessage();
    void take(const std::filesystem::path& answer, const Bridge::FileQuestion& question,
              const Bridge::Environment::Chosen& chosen);

    Platform::TextPainter& painter_;
    std::function<void(const std::string&)> failed_;
    Platform::Window* window_ = nullptr;
    Platform::Point mouse_;
    std::unique_ptr<Platform::Clipboard> clipboard_; // opened when first asked for
    std::shared_ptr<Platform::PopupMenu> menu_;
    std::shared_ptr<Platform::MessageDialog> dialog_;
    std::shared_ptr<Platform::FileDialog> files_;
    std::deque<WaitingMessage> waiting_; // one box at a time
    bool waitsForUser_ = false;
};

} // namespace Shell
