// The five transform instructions, which images run on the current transform and "transform" blocks on their own.
#pragma once

#include "drawing/Geometry.h"
#include "zekt/Executor.h"

#include <optional>
#include <string_view>

namespace OVS {

// What `matrix`, `scale`, `rotate`, `offset` or `shear` does; nullopt for any other name.
std::optional<Drawing::Transform> readTransform(ZEKT::Frame& frame, std::string_view name,
                                                const ZEKT::ArgumentText& text);

// Runs a block of these instructions in a scope below `frame`. An instruction applies within the ones before it.
Drawing::Transform readTransformBlock(ZEKT::Frame& frame, const ZEKT::Argument& block);

} // namespace OVS
