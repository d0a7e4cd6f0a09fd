// A picture is refused with an error, or its pixels are pre-multiplied and survive every way to keep and
// scale them.
#include "images/Image.h"
#include "images/ImageError.h"
#include "images/Png.h"
#include "images/Resample.h"

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

// With the checksums put right: else every change would end at the first of them.
std::string withChecksums(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto byte = [&](std::size_t i) -> std::size_t { return static_cast<unsigned char>(bytes[i]); };
    for (std::size_t at = 8; at + 12 <= size;) {
        const std::size_t length = byte(at) << 24 | byte(at + 1) << 16 | byte(at + 2) << 8 | byte(at + 3);
        if (length > size - at - 12) {
            break;
        }
        const auto sum =
            crc32(0, reinterpret_cast<const Bytef*>(bytes.data() + at + 4), static_cast<uInt>(length + 4));
        for (std::size_t i = 0; i < 4; ++i) {
            bytes[at + 8 + length + i] = static_cast<char>(sum >> (24 - 8 * i) & 255U);
        }
        at += 12 + length;
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const Images::Picture picture = Images::readPng(withChecksums(data, size));
        const Drawing::ConstSurfaceView pixels = picture.pixels.view();
        if (pixels.height % picture.frames != 0) {
            std::abort();
        }
        for (int y = 0; y < pixels.height; ++y) {
            for (int x = 0; x < pixels.width; ++x) {
                if (!Drawing::isPremultiplied(pixels.at(x, y))) {
                    std::abort();
                }
            }
        }
        if (std::int64_t{pixels.width} * pixels.height > 1 << 16) {
            return 0;
        }
        for (const Images::Format format :
             {Images::Format::rle, Images::Format::rlemask, Images::Format::mask}) {
            Drawing::Surface target(40, 30);
            const Images::Image image(Images::resampledFrames(pixels, picture.frames, 20, 10), format,
                                      picture.frames);
            image.draw(target.view(), {5, 5, 20, 20}, -2, 3, {.frame = picture.frames - 1, .opacity = 77});
        }
    } catch (const Images::ImageError&) {
    } catch (const Drawing::SurfaceError&) {
    }
    return 0;
}
