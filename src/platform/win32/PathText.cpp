#include "platform/PathText.h"

#include "platform/win32/SystemText.h"

namespace Platform {

std::string utf8Of(const std::filesystem::path& path) {
    return toUtf8(path.native());
}

std::filesystem::path pathFromUtf8(std::string_view text) {
    return toWide(text);
}

} // namespace Platform
