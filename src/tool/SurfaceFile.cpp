#include "tool/SurfaceFile.h"

#include "drawing/Compose.h"
#include "platform/AtomicFileWrite.h"

#include <png.h>

#include <stdexcept>
#include <string>

namespace Tool {

void writeSurface(const std::filesystem::path& path, const Drawing::ConstSurfaceView& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGBA;
    const auto rgba = Drawing::straightRGBA(picture);
    Platform::atomicFileWrite(path, [&](const std::filesystem::path& temporary) {
        if (!png_image_write_to_file(&image, temporary.string().c_str(), 0, rgba.data(), 0, nullptr)) {
            throw std::runtime_error("Could not write " + path.string() + ": " + image.message);
        }
    });
}

} // namespace Tool
