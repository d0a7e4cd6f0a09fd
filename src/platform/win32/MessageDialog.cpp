#include "platform/MessageDialog.h"

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

class AnsweredMessage final : public MessageDialog {
public:
    AnsweredMessage(MessageAnswer answer, Answered answered) : answer_(answer), answered_(std::move(answered)) {}

    bool poll() override {
        if (const Answered answered = std::exchange(answered_, nullptr)) {
            answered(answer_); // may destroy this dialog
        }
        return false;
    }

private:
    MessageAnswer answer_;
    Answered answered_;
};

} // namespace

std::unique_ptr<MessageDialog> MessageDialog::open(NativeWindow owner, const std::string& title,
                                                   const std::string& text, MessageButtons buttons,
                                                   TextPainter&, Answered answered, int byReturn) {
    const UINT byReturnStyle = byReturn == 1 ? MB_DEFBUTTON2 : byReturn == 2 ? MB_DEFBUTTON3 : MB_DEFBUTTON1;
    const int pressed = MessageBoxW(reinterpret_cast<HWND>(owner), toWide(text).c_str(), toWide(title).c_str(),
                                    styleOf(buttons) | byReturnStyle);
    if (pressed == 0) {
        throw std::runtime_error("Could not show a message: " + systemWords(GetLastError()));
    }
    return std::make_unique<AnsweredMessage>(answerOf(pressed), std::move(answered));
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
