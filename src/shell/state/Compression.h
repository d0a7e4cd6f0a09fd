// The zlib streams that saved state is packed in.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Bnk {

// What a block may say that its stream inflates to.
inline constexpr std::uint32_t kLeastInflated = 4;
inline constexpr std::uint32_t kMostInflated = 0x1400000; // 20 MiB

std::string deflated(std::string_view content);

// The `length` bytes that the stream inflates to; bytes behind the stream are not looked at. Never takes more
// memory than that, whatever the stream holds. Throws FormatException for a length outside the limits, before
// anything is allocated, and for a stream that is damaged, or shorter or longer than it should be;
// StreamException for one that is cut off.
std::string inflated(std::string_view stream, std::uint32_t length);

} // namespace Bnk
