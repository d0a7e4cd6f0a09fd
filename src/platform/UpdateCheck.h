// Asks the maker's server whether there is a newer version. It asks only when told to, and the one who tells
// it has the user's consent; a build without an address has nobody to ask.
#pragma once

#include "platform/HttpGet.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Platform {

class UpdateCheck {
public:
    // The build's address (MURMELON_UPDATE_ADDRESS, empty by default).
    static std::string builtInAddress();

    // The server answers a GET for the address with at most 4096 bytes of text whose first line is the newest
    // version ("1.6.3"), and whose second, if any, is the address of a page about it.
    UpdateCheck(std::string address, std::string currentVersion)
        : address_(std::move(address)), currentVersion_(std::move(currentVersion)) {}

    // Asks, unless it is asking already or there is no address.
    void start();

    struct Update {
        std::string version;
        std::string page; // empty, or an https address
    };

    // Once, when the server has told of a newer version. Failures and anything that is not a version are
    // silent: the user asked for none of it.
    std::optional<Update> poll();

    bool asking() const { return get_ != nullptr; }

private:
    std::string address_;
    std::string currentVersion_;
    std::unique_ptr<HttpGet> get_;
};

// Compares "1.6.2" with "1.10" number by number; nullopt when either is no version.
std::optional<bool> isNewerVersion(std::string_view candidate, std::string_view current);

} // namespace Platform
