#include "platform/win32/SystemText.h"

#include <windows.h>

#include <iterator>

namespace Platform {

std::wstring toWide(std::string_view utf8) {
    const int size = static_cast<int>(utf8.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string toUtf8(std::wstring_view wide) {
    const int size = static_cast<int>(wide.size());
    std::string utf8(static_cast<std::size_t>(
                         WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)),
                     '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), static_cast<int>(utf8.size()), nullptr,
                        nullptr);
    return utf8;
}

std::string systemWords(unsigned long code) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        code, 0, text, static_cast<DWORD>(std::size(text)), nullptr);
    std::string words = toUtf8(std::wstring_view(text, length));
    while (!words.empty() && (words.back() == '\r' || words.back() == '\n' || words.back() == ' ')) {
        words.pop_back();
    }
    return words.empty() ? "error " + std::to_string(code) : words;
}

void* thisModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&thisModule), &module);
    return module;
}

} // namespace Platform
