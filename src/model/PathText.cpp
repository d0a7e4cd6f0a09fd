#include "model/PathText.h"

#include "platform/PathText.h"

namespace Model {

std::string toUtf8(const std::filesystem::path& path) {
    return Platform::utf8Of(path);
}

std::filesystem::path pathFromUtf8(std::string_view text) {
    return Platform::pathFromUtf8(text);
}

} // namespace Model
