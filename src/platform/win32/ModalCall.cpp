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

ModalCall::ModalCall(ModalCall*& slot, HWND owner, Way way)
    : slot_(slot), owner_(GetAncestor(owner, GA_ROOT)), way_(way), outer_(innermost),
      hook_(SetWindowsHookExW(WH_CBT, &ModalCall::windowComesOrGoes, nullptr, GetCurrentThreadId())) {
    innermost = this;
    slot = this;
    if (!IsWindowEnabled(owner_)) {
        owner_ = nullptr;
    }
}

ModalCall::~ModalCall() {
    innermost = outer_;
    UnhookWindowsHookEx(hook_);
    if (!cancelled_) { // else the slot went with its owner
        slot_ = nullptr;
    }
}

LRESULT CALLBACK ModalCall::windowComesOrGoes(int code, WPARAM wide, LPARAM narrow) noexcept {
    const auto window = reinterpret_cast<HWND>(wide);
    if (code == HCBT_CREATEWND && innermost && !innermost->dialog_) {
        const auto& making = *reinterpret_cast<const CBT_CREATEWNDW*>(narrow);
        if ((making.lpcs->style & WS_CHILD) == 0 && isDialog(window)) {
            innermost->dialog_ = window;
            if (innermost->cancelled_) { // before there was anything to see
                PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
            }
        }
    } else if (code == HCBT_DESTROYWND) {
        for (const ModalCall* call = innermost; call; call = call->outer_) {
            if (call->dialog_ && GetWindow(call->dialog_, GW_OWNER) == window) {
                call->end();
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

// The dialog's own code has to find its window when control comes back to it, so it must not go with its owner.
void ModalCall::end() const {
    const auto endOpened = [](HWND window, LPARAM dialog) -> BOOL {
        const auto ours = reinterpret_cast<HWND>(dialog);
        if (window != ours && isDialog(window) && opened(ours, window)) {
            EndDialog(window, IDCANCEL);
        }
        return TRUE;
    };
    EnumThreadWindows(GetCurrentThreadId(), endOpened, reinterpret_cast<LPARAM>(dialog_));
    EnableWindow(owner_, TRUE);
    ShowWindow(dialog_, SW_HIDE);
    SetWindowLongPtrW(dialog_, GWLP_HWNDPARENT, 0);
    if (way_ == Way::endDialog) {
        EndDialog(dialog_, IDCANCEL);
    } else {
        PostMessageW(dialog_, WM_COMMAND, IDCANCEL, 0);
    }
}

} // namespace Platform
