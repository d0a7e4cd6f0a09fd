// For systems that this product needs no outline fonts on.
#include "tool/FontConverter.h"

#include "model/PathText.h"

#include <stdexcept>

namespace Tool {

std::string convertFont(const std::filesystem::path& file, const FontOrigin&) {
    throw std::runtime_error("Could not convert " + Model::toUtf8(file) +
                             ": this system's murmelon has no font converter; use the one on Linux");
}

} // namespace Tool
