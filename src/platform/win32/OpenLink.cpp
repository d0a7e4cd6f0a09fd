#include "platform/OpenLink.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace Platform {

namespace {

// Of paths only folders, for the system would run a program that it was asked to open.
bool isFolder(const std::wstring& link) {
    std::error_code error;
    const std::filesystem::path path(link);
    return path.is_absolute() && std::filesystem::is_directory(path, error);
}

} // namespace

void openLink(const std::string& link) {
    constexpr std::array<std::string_view, 3> kKinds{"https://", "http://", "mailto:"};
    const std::wstring wide = toWide(link);
    const bool address = std::any_of(kKinds.begin(), kKinds.end(),
                                     [&](std::string_view kind) { return link.starts_with(kind); });
    const bool plain = std::none_of(link.begin(), link.end(),
                                    [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
    if (!plain || (!address && !isFolder(wide))) {
        throw std::runtime_error("Not a link: " + link);
    }
    constexpr std::intptr_t kLargestError = 32;
    const auto result = reinterpret_cast<std::intptr_t>(
        ShellExecuteW(nullptr, L"open", wide.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (result <= kLargestError) {
        throw std::runtime_error("Could not open " + link + ": " +
                                 systemWords(static_cast<unsigned long>(result)));
    }
}

} // namespace Platform
