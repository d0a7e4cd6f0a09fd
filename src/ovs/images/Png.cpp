#include "images/Png.h"

#include "drawing/Colour.h"
#include "images/ImageError.h"

#include <png.h>

#include <algorithm>
#include <charconv>
#include <csetjmp>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <vector>

namespace Images {

namespace {

constexpr std::string_view kFramesKey = "PixelStrip.Frames";

// 128 megabytes; a film of 271 frames of 256 x 256 pixels has half of it.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 25;

// Text entries and the like; pictures are bounded by their size.
constexpr png_alloc_size_t kLargestChunk = 8U << 20;
constexpr png_uint_32 kMostChunks = 256;

// The library fails by jumping, over everything between it and the function that called it. So each function
// that calls it owns nothing that needs to be destroyed, and this class does.
class Reader {
public:
    explicit Reader(std::string_view bytes) : bytes_(bytes) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, fail, ignore);
        info_ = png_ != nullptr ? png_create_info_struct(png_) : nullptr;
        if (info_ == nullptr) {
            png_destroy_read_struct(&png_, nullptr, nullptr);
            throw std::bad_alloc();
        }
    }
    ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Picture read() {
        check(readHeader());
        pixels_ = Drawing::Surface(static_cast<int>(width_), static_cast<int>(height_));
        rows_.resize(height_);
        for (png_uint_32 y = 0; y < height_; ++y) {
            rows_[y] = reinterpret_cast<png_bytep>(pixels_.view().row(static_cast<int>(y)));
        }
        check(readRows());
        for (png_uint_32 y = 0; y < height_; ++y) {
            premultiply(pixels_.view().row(static_cast<int>(y)));
        }
        return {std::move(pixels_), frames_};
    }

private:
    static Reader& of(png_structp png) { return *static_cast<Reader*>(png_get_error_ptr(png)); }

    static void fail(png_structp png, png_const_charp message) {
        Reader& reader = of(png);
        std::strncpy(reader.message_, message, sizeof reader.message_ - 1);
        std::longjmp(reader.start_, 1);
    }

    static void ignore(png_structp, png_const_charp) {}

    static void supply(png_structp png, png_bytep data, png_size_t length) {
        auto& rest = *static_cast<std::string_view*>(png_get_io_ptr(png));
        if (length > rest.size()) {
            png_error(png, "Read Error");
        }
        std::memcpy(data, rest.data(), length);
        rest.remove_prefix(length);
    }

    void check(bool succeeded) const {
        if (!succeeded) {
            throw ImageError(std::string("Error reading PNG image : ") + message_);
        }
    }

    // What can be made of the data at most: zlib packs no tighter than 1032 to 1.
    bool dataCanHold(png_uint_32 rowBytes) const {
        constexpr std::uint64_t kTightest = 1032;
        return std::uint64_t{rowBytes} * height_ <= bytes_.size() * kTightest;
    }

    bool readHeader() {
        if (setjmp(start_) != 0) {
            return false;
        }
        png_set_read_fn(png_, &bytesLeft_, supply);
        png_set_user_limits(png_, Drawing::kMaxSurfaceSide, Drawing::kMaxSurfaceSide);
        png_set_chunk_malloc_max(png_, kLargestChunk);
        png_set_chunk_cache_max(png_, kMostChunks);
        png_read_info(png_, info_);
        width_ = png_get_image_width(png_, info_);
        height_ = png_get_image_height(png_, info_);
        if (std::int64_t{width_} * height_ > kMostPixels) {
            png_error(png_, "Image is too large");
        }
        if (!dataCanHold(static_cast<png_uint_32>(png_get_rowbytes(png_, info_)))) {
            png_error(png_, "Not enough image data");
        }
        png_set_expand(png_);
        png_set_scale_16(png_);
        png_set_gray_to_rgb(png_);
        png_set_add_alpha(png_, 0xFF, PNG_FILLER_AFTER);
        png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        return true;
    }

    bool readRows() {
        if (setjmp(start_) != 0) {
            return false;
        }
        png_read_image(png_, rows_.data());
        png_read_end(png_, info_);
        png_textp entries = nullptr;
        int count = 0;
        png_get_text(png_, info_, &entries, &count);
        for (int i = 0; i < count; ++i) {
            if (entries[i].key == kFramesKey && entries[i].text != nullptr) {
                const char* text = entries[i].text;
                frames_ = 1;
                std::from_chars(text + std::strspn(text, " \t\r\n"), text + std::strlen(text), frames_);
            }
        }
        return true;
    }

    void premultiply(Drawing::Pixel* row) const {
        for (png_uint_32 x = 0; x < width_; ++x) {
            std::uint8_t rgba[4];
            std::memcpy(rgba, row + x, sizeof rgba);
            const unsigned alpha = rgba[3];
            row[x] =
                Drawing::pixelOf(alpha, Drawing::multiply255(rgba[0], alpha),
                                 Drawing::multiply255(rgba[1], alpha), Drawing::multiply255(rgba[2], alpha));
        }
    }

    std::string_view bytes_;
    std::string_view bytesLeft_ = bytes_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::jmp_buf start_;
    char message_[200] = "";
    png_uint_32 width_ = 0;
    png_uint_32 height_ = 0;
    int frames_ = 1;
    Drawing::Surface pixels_;
    std::vector<png_bytep> rows_;
};

} // namespace

Drawing::Surface verticalStrip(const Drawing::ConstSurfaceView& picture, int frames) {
    if (picture.width % frames != 0) {
        throw ImageError("Image width incompatible with pixelstrip specification");
    }
    const int width = picture.width / frames;
    Drawing::checkSurfaceSize(width, std::int64_t{picture.height} * frames);
    Drawing::Surface strip(width, picture.height * frames);
    const Drawing::SurfaceView target = strip.view();
    for (int y = 0; y < picture.height; ++y) {
        for (int frame = 0; frame < frames; ++frame) {
            std::copy_n(picture.row(y) + std::ptrdiff_t{frame} * width, width,
                        target.row(frame * picture.height + y));
        }
    }
    return strip;
}

Picture readPng(std::string_view bytes) {
    Picture picture = Reader(bytes).read();
    if (picture.frames < 2) {
        picture.frames = 1;
        return picture;
    }
    picture.pixels = verticalStrip(picture.pixels.view(), picture.frames);
    return picture;
}

} // namespace Images
