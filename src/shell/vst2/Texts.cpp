#include "vst2/Texts.h"

#include <algorithm>

namespace Shell {

bool copyText(std::string_view text, void* buffer, std::size_t longest) {
    if (buffer == nullptr) {
        return false;
    }
    std::size_t length = std::min(text.size(), longest);
    const auto continues = [&](std::size_t i) {
        return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    };
    while (length > 0 && length < text.size() && continues(length)) {
        --length;
    }
    char* const target = static_cast<char*>(buffer);
    std::copy_n(text.begin(), length, target);
    target[length] = '\0';
    return true;
}

} // namespace Shell
