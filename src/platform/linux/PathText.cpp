#include "platform/PathText.h"

namespace Platform {

std::string utf8Of(const std::filesystem::path& path) {
    return path.native();
}

std::filesystem::path pathFromUtf8(std::string_view text) {
    return text;
}

} // namespace Platform
