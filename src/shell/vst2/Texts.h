// Texts into the hosts' fixed buffers.
#pragma once

#include <cstddef>
#include <string_view>

namespace Shell {

// Writes at most `longest` bytes and a NUL behind them. A UTF-8 character that does not fit whole is left out.
// False when there is no buffer.
bool copyText(std::string_view text, void* buffer, std::size_t longest);

} // namespace Shell
