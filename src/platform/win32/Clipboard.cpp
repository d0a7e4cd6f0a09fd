#include "platform/Clipboard.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <chrono>
#include <cstring>
#include <thread>

namespace Platform {

namespace {

constexpr std::chrono::milliseconds kPatience{1000};
constexpr std::chrono::milliseconds kRetryInterval{5};

// Open for one reading or writing. Another program may have it open for a moment.
class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner) {
        const auto deadline = std::chrono::steady_clock::now() + kPatience;
        while (!(open_ = OpenClipboard(owner) != 0) && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(kRetryInterval);
        }
    }
    ~OpenedClipboard() {
        if (open_) {
            CloseClipboard();
        }
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    explicit operator bool() const { return open_; }

private:
    bool open_ = false;
};

std::wstring withWindowsLineEnds(std::wstring_view text) {
    std::wstring result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'\n' && (i == 0 || text[i - 1] != L'\r')) {
            result += L'\r';
        }
        result += text[i];
    }
    return result;
}

std::string withUnixLineEnds(std::string text) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') {
            text[kept++] = text[i];
        }
    }
    text.resize(kept);
    return text;
}

class SystemClipboard final : public Clipboard {
public:
    // The owner of what is put there is a window; this one is never seen.
    SystemClipboard()
        : owner_(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
    }
    ~SystemClipboard() override {
        if (owner_) {
            DestroyWindow(owner_);
        }
    }
    SystemClipboard(const SystemClipboard&) = delete;
    SystemClipboard& operator=(const SystemClipboard&) = delete;

    std::string text() override {
        const OpenedClipboard clipboard(owner_);
        if (!clipboard) {
            return withoutClipboard_;
        }
        const HANDLE memory = GetClipboardData(CF_UNICODETEXT);
        const auto* const letters = memory ? static_cast<const wchar_t*>(GlobalLock(memory)) : nullptr;
        if (!letters) {
            return {};
        }
        const std::size_t most = GlobalSize(memory) / sizeof(wchar_t); // the end may be missing
        const std::wstring_view all(letters, most);
        std::string result = withUnixLineEnds(toUtf8(all.substr(0, all.find(L'\0'))));
        GlobalUnlock(memory);
        return result;
    }

    void setText(std::string_view utf8) override {
        withoutClipboard_ = utf8;
        const OpenedClipboard clipboard(owner_);
        if (!clipboard || !EmptyClipboard()) {
            return;
        }
        const std::wstring wide = withWindowsLineEnds(toWide(utf8));
        const std::size_t bytes = (wide.size() + 1) * sizeof(wchar_t);
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
        if (!memory) {
            return;
        }
        std::memcpy(GlobalLock(memory), wide.c_str(), bytes);
        GlobalUnlock(memory);
        if (!SetClipboardData(CF_UNICODETEXT, memory)) { // else it is the system's now
            GlobalFree(memory);
        }
    }

private:
    HWND owner_;
    std::string withoutClipboard_;
};

} // namespace

std::unique_ptr<Clipboard> Clipboard::open() {
    return std::make_unique<SystemClipboard>();
}

} // namespace Platform
