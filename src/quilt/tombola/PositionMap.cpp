#include "tombola/PositionMap.h"

#include <algorithm>

namespace Tombola {

Stackbrace::Position PositionMap::locate(std::size_t offset) const {
    const auto next = std::ranges::upper_bound(stretches_, offset, {}, &Stretch::offset);
    if (next == stretches_.begin()) {
        return {};
    }
    const Stretch& stretch = *(next - 1);
    const std::size_t step = stretch.together ? 0 : offset - stretch.offset;
    return Stackbrace::positionIn(stretch.source->text, stretch.sourceOffset + step, stretch.source->name);
}

} // namespace Tombola
