// The settings of this program's own in place of the user's, for every effect that it makes: empty at first and
// again after `clear`.
#pragma once

#include <filesystem>

class UserSettings {
public:
    UserSettings();
    ~UserSettings();
    UserSettings(const UserSettings&) = delete;
    UserSettings& operator=(const UserSettings&) = delete;

    void clear() const;

private:
#if defined(_WIN32)
    void* key_ = nullptr;
#else
    std::filesystem::path folder_;
#endif
};

extern const UserSettings settings;
