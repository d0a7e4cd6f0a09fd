#include "platform/win32/ModalCall.h"

#include <string_view>

namespace Platform {

namespace {

thread_local ModalCall* innermost = nullptr;

bool isDialog(HWND window) {
    wchar_t name[16];
    const int length = GetClassNameW(window, name, 16);
    return std::wstring_view(name, static_cast<std::size_t>(length)) == L"#32770";
}

bool opened(HWND dialog, HWND window) {
    while (window && window != dialog) {
        window = GetWindow(window, GW_OWNER);
    }
    return window != nullptr;
}

} // namespace

ModalCall::ModalCall(ModalCall*& slot, Way way)
    : slot_(slot), way_(way), outer_(innermost),
      hook_(SetWindowsHookExW(WH_CBT, &ModalCall::windowMade, nullptr, GetCurrentThreadId())) {
    innermost = this;
    slot = this;
}

ModalCall::~ModalCall() {
    innermost = outer_;
    UnhookWindowsHookEx(hook_);
    if (!cancelled_) { // else the slot went with its owner
        slot_ = nullptr;
    }
}

LRESULT CALLBACK ModalCall::windowMade(int code, WPARAM wide, LPARAM narrow) noexcept {
    ModalCall* const call = innermost;
    if (code == HCBT_CREATEWND && call && !call->dialog_) {
        const auto window = reinterpret_cast<HWND>(wide);
        const auto& making = *reinterpret_cast<const CBT_CREATEWNDW*>(narrow);
        if ((making.lpcs->style & WS_CHILD) == 0 && isDialog(window)) {
            call->dialog_ = window;
            if (call->cancelled_) { // before there was anything to see
                PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
            }
        }
    }
    return CallNextHookEx(nullptr, code, wide, narrow);
}

void ModalCall::cancel() {
    cancelled_ = true;
    if (IsWindow(dialog_)) { // else it is still to come, or gone with its owner
        end();
    }
}

void ModalCall::end() const {
    const auto endOpened = [](HWND window, LPARAM dialog) -> BOOL {
        const auto ours = reinterpret_cast<HWND>(dialog);
        if (window != ours && isDialog(window) && opened(ours, window)) {
            EndDialog(window, IDCANCEL);
        }
        return TRUE;
    };
    EnumThreadWindows(GetCurrentThreadId(), endOpened, reinterpret_cast<LPARAM>(dialog_));
    if (way_ == Way::endDialog) {
        EndDialog(dialog_, IDCANCEL);
    } else {
        PostMessageW(dialog_, WM_COMMAND, IDCANCEL, 0);
    }
}

} // namespace Platform
