// Texts as they are drawn and edited: 16-bit characters. What comes as bytes is UTF-8 or, where a byte does not
// fit, one character a byte.
#pragma once

#include <string>
#include <string_view>

namespace Quilt {

std::u16string charactersOf(std::string_view text);
std::string utf8Of(std::u16string_view text);

} // namespace Quilt
