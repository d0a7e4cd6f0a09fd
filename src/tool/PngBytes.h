// Pictures as the contents of PNG files. The PNG library itself opens files by names of bytes, which not every system
// has.
#pragma once

#include <png.h>

#include <stdexcept>
#include <string>

namespace Tool {

// `pixels` are as `image` says, without gaps.
inline std::string pngBytes(png_image image, const void* pixels) {
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (!png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels, 0, nullptr)) {
        throw std::runtime_error(std::string("Could not make a PNG picture: ") + image.message);
    }
    bytes.resize(size);
    return bytes;
}

} // namespace Tool
