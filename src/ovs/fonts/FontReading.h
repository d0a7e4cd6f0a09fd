// Reads font documents: scripts of the format "ovsfont-1" with the instructions metrics, glyph and kern.
#pragma once

#include "fonts/FontDocument.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

namespace ZEKT {
class Argument;
class Frame;
} // namespace ZEKT

namespace OVS {

using TraceLine = std::function<void(std::string_view line)>;

// What a document can ask for in few words: pairs by sets of characters, the same long outline in a loop.
inline constexpr std::size_t kMostKerningPairs = std::size_t{1} << 18;
inline constexpr std::size_t kMostOutlinePoints = std::size_t{1} << 20;

// Throw ZEKT exceptions. The second runs a body within the script that holds it, in a scope below `frame`.
std::shared_ptr<const FontDocument> readFont(std::string_view document, const TraceLine& trace = {});
std::shared_ptr<const FontDocument> readFont(ZEKT::Frame& frame, const ZEKT::Argument& body);

} // namespace OVS
