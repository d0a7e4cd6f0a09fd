#include "tool/SurfaceFile.h"

#include "drawing/Compose.h"
#include "tool/PixelFile.h"

namespace Tool {

void writeSurface(const std::filesystem::path& path, const Drawing::ConstSurfaceView& picture) {
    writePixels(path, picture.width, picture.height, PixelBytes::rgba, Drawing::straightRGBA(picture));
}

} // namespace Tool
