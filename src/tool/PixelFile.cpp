#include "tool/PixelFile.h"

#include "platform/AtomicFileWrite.h"
#include "platform/PathText.h"

#include <png.h>

#include <stdexcept>
#include <string>

namespace Tool {

// In memory first: the library would open the file by a narrow name, and remove what it could not write to.
void writePixels(const std::filesystem::path& path, int width, int height, PixelBytes format,
                 const std::vector<std::uint8_t>& bytes) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = format == PixelBytes::rgb ? PNG_FORMAT_RGB : PNG_FORMAT_RGBA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string contents(size, '\0');
    if (!png_image_write_to_memory(&image, contents.data(), &size, 0, bytes.data(), 0, nullptr)) {
        throw std::runtime_error("Could not write " + Platform::utf8Of(path) + ": " + image.message);
    }
    contents.resize(size);
    Platform::atomicFileWrite(path, contents);
}

} // namespace Tool
