#include "platform/ThisProgram.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <shellapi.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

namespace Platform {

std::filesystem::path pathOfThisProgram() {
    constexpr DWORD kLongestPath = 32768;
    std::wstring file(kLongestPath, L'\0');
    file.resize(GetModuleFileNameW(nullptr, file.data(), kLongestPath));
    return file;
}

bool standardErrorIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

// What main() was given went through a code page that may lack its letters.
std::vector<std::string> argumentsOfThisProgram(int, char**) {
    int count = 0;
    LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) {
        arguments.push_back(toUtf8(wide[i]));
    }
    LocalFree(wide);
    return arguments;
}

void keepStandardStreamsUnchanged() {
    for (std::FILE* const stream : {stdin, stdout, stderr}) {
        _setmode(_fileno(stream), _O_BINARY);
    }
}

void keepThisLibrary() noexcept {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&keepThisLibrary), &module);
}

} // namespace Platform
