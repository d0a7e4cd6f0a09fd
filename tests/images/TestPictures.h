// Pictures for tests: PNG files in memory, patterns in which every pixel is known, random ones.
#pragma once

#include "drawing/Colour.h"
#include "drawing/Surface.h"

#include <png.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace TestPictures {

using Texts = std::vector<std::pair<std::string, std::string>>;

struct PngOptions {
    int colourType = PNG_COLOR_TYPE_RGB_ALPHA;
    int depth = 8;
    bool interlaced = false;
    Texts texts = {};
    bool textsAtEnd = false;
};

// `sample(x, y, channel)` is a byte; the channels are those of the colour type.
inline std::string png(int width, int height, const std::function<unsigned(int, int, int)>& sample,
                       const PngOptions& options = {}) {
    std::string bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_structp writer, png_bytep data, png_size_t length) {
            static_cast<std::string*>(png_get_io_ptr(writer))->append(reinterpret_cast<char*>(data), length);
        },
        nullptr);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), options.depth,
                 options.colourType, options.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_text> entries;
    for (const auto& [key, text] : options.texts) {
        png_text entry = {};
        entry.compression = entries.size() % 2 == 0 ? PNG_TEXT_COMPRESSION_NONE : PNG_TEXT_COMPRESSION_zTXt;
        entry.key = const_cast<char*>(key.c_str());
        entry.text = const_cast<char*>(text.c_str());
        entries.push_back(entry);
    }
    if (!options.textsAtEnd) {
        png_set_text(png, info, entries.data(), static_cast<int>(entries.size()));
    }
    png_write_info(png, info);
    if (options.textsAtEnd) {
        png_set_text(png, info, entries.data(), static_cast<int>(entries.size()));
    }
    const int channels = png_get_channels(png, info);
    const int bytesASample = options.depth / 8;
    std::vector<std::vector<png_byte>> rows;
    std::vector<png_bytep> pointers;
    for (int y = 0; y < height; ++y) {
        rows.emplace_back();
        for (int x = 0; x < width; ++x) {
            for (int channel = 0; channel < channels; ++channel) {
                rows.back().insert(rows.back().end(), static_cast<std::size_t>(bytesASample),
                                   static_cast<png_byte>(sample(x, y, channel)));
            }
        }
    }
    for (auto& row : rows) {
        pointers.push_back(row.data());
    }
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

// Opaque; the colour tells where it is.
inline Drawing::Pixel placed(int x, int y) {
    return Drawing::pixelOf(255, static_cast<unsigned>(x) & 255U, static_cast<unsigned>(y) & 255U, 7);
}

inline std::string placedPng(int width, int height, const PngOptions& options = {}) {
    return png(
        width, height,
        [](int x, int y, int channel) {
            const Drawing::Pixel pixel = placed(x, y);
            return channel == 3 ? 255U : pixel >> (16 - 8 * channel) & 255U;
        },
        options);
}

// Runs of many lengths, transparent, opaque and between.
inline Drawing::Surface random(int width, int height, unsigned seed) {
    std::mt19937 generator(seed);
    const auto below = [&](unsigned limit) { return static_cast<unsigned>(generator()) % limit; };
    Drawing::Surface surface(width, height);
    Drawing::Pixel pixel = 0;
    int left = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, --left) {
            if (left <= 0) {
                const unsigned kind = below(4);
                const unsigned alpha = kind == 0 ? 0 : kind == 1 ? 255 : below(256);
                pixel = Drawing::pixelOf(alpha, below(alpha + 1), below(alpha + 1), below(alpha + 1));
                left = static_cast<int>(below(2) == 0 ? 1 : below(12));
            }
            surface.view().at(x, y) = pixel;
        }
    }
    return surface;
}

} // namespace TestPictures
