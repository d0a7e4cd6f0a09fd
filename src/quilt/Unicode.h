// Between the UTF-8 of variables and layouts and the 16-bit characters of fonts.
#pragma once

#include <string>
#include <string_view>

namespace Quilt {

// Bytes that are no UTF-8 stand each for the character of the same number; characters beyond 16 bits become
// surrogates.
std::u16string toUtf16(std::string_view utf8);

std::string toUtf8(std::u16string_view text);

} // namespace Quilt
