// For systems that this product needs no outline fonts on.
#include "tool/FontConverter.h"

#include <stdexcept>

namespace Tool {

std::string convertFont(const std::string& file, const FontOrigin&) {
    throw std::runtime_error("Could not convert " + file +
                             ": this system's murmelon has no font converter; use the one on Linux");
}

} // namespace Tool
