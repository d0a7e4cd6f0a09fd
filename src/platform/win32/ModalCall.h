// A call that shows a dialog of the system's and comes back when the user has answered. It lets the host's messages
// through meanwhile, so that whoever waits for the answer may have to go before it comes.
//
//   ModalCall call(call_, owner_, ModalCall::Way::endDialog);
//   const int pressed = MessageBoxW(...);
//   if (call.cancelled()) return; // the owner of call_ is no more
#pragma once

#include <windows.h>

namespace Platform {

class ModalCall {
public:
    // What answers the dialog in the user's place.
    enum class Way { endDialog, cancelCommand };

    // The first dialog that this thread makes from here on is the call's, and `owner` lies within the window that it
    // belongs to. `slot` points to the call while it lasts.
    ModalCall(ModalCall*& slot, HWND owner, Way way);
    ~ModalCall();
    ModalCall(const ModalCall&) = delete;
    ModalCall& operator=(const ModalCall&) = delete;

    // For an owner that goes. Takes the dialog off the screen, with what it has opened itself. The call comes back
    // as soon as what has called this does.
    void cancel();
    bool cancelled() const { return cancelled_; }

private:
    static LRESULT CALLBACK windowComesOrGoes(int code, WPARAM wide, LPARAM narrow) noexcept;
    void end() const;

    ModalCall*& slot_;
    HWND owner_; // null: there is none that the dialog disables
    Way way_;
    ModalCall* outer_; // another instance's
    HHOOK hook_;
    HWND dialog_ = nullptr;
    bool cancelled_ = false;
};

} // namespace Platform
