#include "UserSettings.h"

#include <stdexcept>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <cstdlib>
#endif

const UserSettings settings;

#if defined(_WIN32)

namespace {

std::wstring nameOfKey() {
    return L"Software\\Korvanta\\MurmelonTest-" + std::to_wstring(GetCurrentProcessId());
}

} // namespace

// What any module of this program takes for the user's registry is a key in it.
UserSettings::UserSettings() {
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, nameOfKey().c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr) != ERROR_SUCCESS ||
        RegOverridePredefKey(HKEY_CURRENT_USER, key) != ERROR_SUCCESS) {
        throw std::runtime_error("no registry of its own");
    }
    key_ = key;
}

UserSettings::~UserSettings() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(static_cast<HKEY>(key_));
    RegDeleteTreeW(HKEY_CURRENT_USER, nameOfKey().c_str());
}

void UserSettings::clear() const {
    RegDeleteTreeW(static_cast<HKEY>(key_), L"Software\\Korvanta");
}

#else

UserSettings::UserSettings() {
    std::string name = (std::filesystem::temp_directory_path() / "murmelon-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    folder_ = name;
    ::setenv("XDG_CONFIG_HOME", name.c_str(), 1);
}

UserSettings::~UserSettings() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void UserSettings::clear() const {
    std::filesystem::remove_all(folder_ / "Murmelon");
}

#endif
