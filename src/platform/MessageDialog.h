// Says something to the user and asks for a button: the system's message box, or a window of our own. For the
// main thread only.
#pragma once

#include "platform/TextPainter.h"
#include "platform/Window.h"

#include <functional>
#include <memory>
#include <string>

namespace Platform {

enum class MessageButtons { ok, okCancel, retryCancel, yesNo, yesNoCancel, abortRetryIgnore };
enum class MessageAnswer { ok, cancel, yes, no, retry, abort, ignore };

class MessageDialog {
public:
    using Answered = std::function<void(MessageAnswer)>;

    // `answered` is called once, from within poll() and never from here, unless the dialog is destroyed
    // before, which takes it off the screen. `answered` may destroy the dialog. Escape and closing answer
    // with the last button. The return key chooses button number `byReturn`, counted from the left. The painter must outlive the dialog. `owner` (0: none)
    // stays behind it. Throws std::runtime_error when no window can be had.
    static std::unique_ptr<MessageDialog> open(NativeWindow owner, const std::string& title,
                                               const std::string& text, MessageButtons buttons,
                                               TextPainter& painter, Answered answered,
                                               int byReturn = 0);

    virtual ~MessageDialog() = default;

    // False when the answer has been given. Returns at once, but on Windows when the user has answered, as file
    // dialogs do.
    virtual bool poll() = 0;
};

// For errors that leave no editor, and so no painter. On Linux it returns at once: a dialog program of the
// desktop shows the text, or it goes to the standard error stream. Never throws.
void showError(const std::string& title, const std::string& text) noexcept;

} // namespace Platform
