// Somebody at the screen while the program's own thread is held up by what the system shows: a thread that waits
// for windows of this process, reads them and answers.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <utility>

class ScreenUser {
public:
    // Does one thing after another; joined at the end.
    explicit ScreenUser(std::function<void()> deeds) : thread_(std::move(deeds)) {}
    ~ScreenUser() { thread_.join(); }
    ScreenUser(const ScreenUser&) = delete;
    ScreenUser& operator=(const ScreenUser&) = delete;

    static constexpr const wchar_t* kDialog = L"#32770"; // the classes of all dialogs and of all menus
    static constexpr const wchar_t* kMenu = L"#32768";
    static constexpr DWORD kPatience = 15'000; // milliseconds

    // A visible one of this process; null: there is none.
    static HWND find(const wchar_t* kind, const std::wstring& title = {}) {
        HWND window = nullptr;
        while ((window = FindWindowExW(nullptr, window, kind, title.empty() ? nullptr : title.c_str()))) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == GetCurrentProcessId() && IsWindowVisible(window)) {
                return window;
            }
        }
        return nullptr;
    }

    // Null when it does not come.
    static HWND await(const wchar_t* kind, const std::wstring& title = {}) {
        HWND window = nullptr;
        until([&] { return (window = find(kind, title)) != nullptr; });
        Sleep(100); // it may still be filling itself
        return window;
    }

    template <typename Condition>
    static bool until(Condition condition) {
        const DWORD start = GetTickCount();
        while (!condition()) {
            if (GetTickCount() - start > kPatience) {
                return false;
            }
            Sleep(10);
        }
        return true;
    }

    static std::wstring textOf(HWND window) {
        std::wstring text(1000, L'\0');
        text.resize(static_cast<std::size_t>(
            SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
        return text;
    }

    static void press(HWND dialog, WORD button) { PostMessageW(dialog, WM_COMMAND, button, 0); }

    // Of a file dialog.
    static HWND fileName(HWND dialog) {
        constexpr int kEdit = 0x480;
        constexpr int kComboBox = 0x47C;
        const HWND edit = GetDlgItem(dialog, kEdit);
        return edit ? edit : GetDlgItem(dialog, kComboBox);
    }
    static void typeFile(HWND dialog, const std::wstring& name) {
        SendMessageW(fileName(dialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
        press(dialog, IDOK);
    }

    static void key(WORD code) {
        for (const DWORD what : {DWORD{0}, DWORD{KEYEVENTF_KEYUP}}) {
            INPUT input{};
            input.type = INPUT_KEYBOARD;
            input.ki.wVk = code;
            input.ki.dwFlags = what;
            SendInput(1, &input, sizeof input);
        }
        Sleep(50);
    }

    static void pointer(DWORD what, POINT onScreen) {
        INPUT input{};
        input.type = INPUT_MOUSE;
        input.mi.dx = MulDiv(onScreen.x, 65536, GetSystemMetrics(SM_CXSCREEN)) + 1;
        input.mi.dy = MulDiv(onScreen.y, 65536, GetSystemMetrics(SM_CYSCREEN)) + 1;
        input.mi.dwFlags = MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE | what;
        SendInput(1, &input, sizeof input);
    }

private:
    std::thread thread_;
};
