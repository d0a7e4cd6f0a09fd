#include "platform/OpenLink.h"

#include "platform/linux/ChildProcess.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace Platform {

void openLink(const std::string& link) {
    constexpr std::array<std::string_view, 4> kKinds{"https://", "http://", "mailto:", "/"};
    const bool known = std::any_of(kKinds.begin(), kKinds.end(),
                                   [&](std::string_view kind) { return link.starts_with(kind); });
    const bool plain = std::none_of(link.begin(), link.end(),
                                    [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
    if (!known || !plain) {
        throw std::runtime_error("Not a link: " + link);
    }
    if (!programExists("xdg-open")) {
        throw std::runtime_error("Could not open " + link + ": install xdg-utils");
    }
    startDetached({"xdg-open", link});
}

} // namespace Platform
