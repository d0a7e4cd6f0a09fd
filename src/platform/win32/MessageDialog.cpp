#include "platform/MessageDialog.h"

#include "platform/win32/ModalCall.h"
#include "platform/win32/SystemText.h"

#include <windows.h>

#include <stdexcept>
#include <utility>

namespace Platform {

namespace {

UINT styleOf(MessageButtons buttons) {
    switch (buttons) {
    case MessageButtons::okCancel:
        return MB_OKCANCEL;
    case MessageButtons::retryCancel:
        return MB_RETRYCANCEL;
    case MessageButtons::yesNo:
        return MB_YESNO;
    case MessageButtons::yesNoCancel:
        return MB_YESNOCANCEL;
    case MessageButtons::abortRetryIgnore:
        return MB_ABORTRETRYIGNORE;
    case MessageButtons::ok:
        break;
    }
    return MB_OK;
}

MessageAnswer answerOf(int pressed) {
    switch (pressed) {
    case IDCANCEL:
        return MessageAnswer::cancel;
    case IDYES:
        return MessageAnswer::yes;
    case IDNO:
        return MessageAnswer::no;
    case IDRETRY:
        return MessageAnswer::retry;
    case IDABORT:
        return MessageAnswer::abort;
    case IDIGNORE:
        return MessageAnswer::ignore;
    default:
        return MessageAnswer::ok;
    }
}

class MessageBoxDialog final : public MessageDialog {
public:
    MessageBoxDialog(NativeWindow owner, const std::string& title, const std::string& text, UINT style,
                     Answered answered)
        : owner_(reinterpret_cast<HWND>(owner)), title_(toWide(title)), text_(toWide(text)), style_(style),
          answered_(std::move(answered)) {}

    ~MessageBoxDialog() override {
        if (call_) {
            call_->cancel();
        }
    }
    MessageBoxDialog(const MessageBoxDialog&) = delete;
    MessageBoxDialog& operator=(const MessageBoxDialog&) = delete;

    bool poll() override {
        const Answered answered = std::exchange(answered_, nullptr);
        if (!answered) {
            return call_ != nullptr; // from within the call below
        }
        const std::wstring title = std::move(title_);
        const std::wstring text = std::move(text_);
        int pressed = 0;
        {
            const ModalCall call(call_, owner_, ModalCall::Way::endDialog);
            pressed = MessageBoxW(owner_, text.c_str(), title.c_str(), style_);
            if (call.cancelled()) {
                return false; // this dialog is no more
            }
            if (pressed == 0) {
                throw std::runtime_error("Could not show a message: " + systemWords(GetLastError()));
            }
        }
        answered(answerOf(pressed)); // may destroy this dialog
        return false;
    }

private:
    HWND owner_;
    std::wstring title_;
    std::wstring text_;
    UINT style_;
    Answered answered_;
    ModalCall* call_ = nullptr; // while the box is on the screen
};

} // namespace

std::unique_ptr<MessageDialog> MessageDialog::open(NativeWindow owner, const std::string& title,
                                                   const std::string& text, MessageButtons buttons,
                                                   TextPainter&, Answered answered, int byReturn) {
    const UINT byReturnStyle = byReturn == 1 ? MB_DEFBUTTON2 : byReturn == 2 ? MB_DEFBUTTON3 : MB_DEFBUTTON1;
    return std::make_unique<MessageBoxDialog>(owner, title, text, styleOf(buttons) | byReturnStyle,
                                              std::move(answered));
}

void showError(const std::string& title, const std::string& text) noexcept {
    // The buttons in the language of the text.
    constexpr UINT kStyle = MB_OK | MB_ICONERROR | MB_TASKMODAL | MB_SETFOREGROUND;
    constexpr WORD kAmericanEnglish = 1033;
    static_assert(kStyle == 0x12010);
    try {
        MessageBoxExW(nullptr, toWide(text).c_str(), toWide(title).c_str(), kStyle, kAmericanEnglish);
    } catch (...) { // for want of memory
        MessageBoxExW(nullptr, L"Out of memory", L"Murmelon", kStyle, kAmericanEnglish);
    }
}

} // namespace Platform
