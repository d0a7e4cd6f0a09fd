#include "tool/SurfaceFile.h"

#include "drawing/Compose.h"
#include "platform/AtomicFileWrite.h"
#include "tool/PngBytes.h"

namespace Tool {

void writeSurface(const std::filesystem::path& path, const Drawing::ConstSurfaceView& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGBA;
    const auto rgba = Drawing::straightRGBA(picture);
    Platform::atomicFileWrite(path, pngBytes(image, rgba.data()));
}

} // namespace Tool
