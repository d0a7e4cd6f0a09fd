#include "platform/UserFolders.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include <stdexcept>
#include <string>

namespace Platform {

namespace {

std::filesystem::path applicationData() {
    PWSTR text = nullptr;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &text);
    const std::filesystem::path folder = text ? text : L"";
    CoTaskMemFree(text);
    if (FAILED(result) || folder.empty()) {
        throw std::runtime_error("The user has no folder for application data");
    }
    return folder;
}

} // namespace

std::filesystem::path settingsFolder() {
    return applicationData() / "Murmelon";
}

std::filesystem::path supportFolder() {
    return applicationData() / "Korvanta";
}

std::filesystem::path binaryFolder() {
    constexpr DWORD kLongestPath = 32768;
    std::wstring file(kLongestPath, L'\0');
    file.resize(GetModuleFileNameW(static_cast<HMODULE>(thisModule()), file.data(), kLongestPath));
    return std::filesystem::path(file).parent_path();
}

} // namespace Platform
