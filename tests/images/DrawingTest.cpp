// Pictures and films put on a surface, in every format, against the plainest way to do it.
#include "TestPictures.h"

#include "images/Film.h"
#include "images/ImageError.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using Drawing::Pixel;
using Images::Format;
using Images::Image;

namespace {

Drawing::Surface copyOf(const Drawing::Surface& surface) {
    Drawing::Surface copy(surface.width(), surface.height());
    std::copy_n(surface.view().pixels, surface.width() * surface.height(), copy.view().pixels);
    return copy;
}

// One channel of `source` times opacity over `target`, in real numbers.
double plainly(Pixel source, Pixel target, double opacity, int shift) {
    const double alpha = (source >> 24) / 255.0 * opacity;
    return (source >> shift & 255) * opacity + (target >> shift & 255) * (1.0 - alpha);
}

} // namespace

TEST(ImageDrawing, everyFormatShowsTheSameWithinItsClip) {
    const Drawing::Surface picture = TestPictures::random(37, 24, 3);
    const Drawing::Surface ground = TestPictures::random(50, 40, 4);
    constexpr Pixel kColour = 0xC0904020;
    struct Row {
        Drawing::IntRect clip;
        int x;
        int y;
        int frame;
        unsigned opacity;
    };
    const Row rows[] = {
        {{0, 0, 50, 40}, 3, 5, 0, 255},  {{0, 0, 50, 40}, 3, 5, 1, 255},
        {{10, 8, 9, 4}, 3, 5, 2, 255},   {{0, 0, 50, 40}, -20, -3, 1, 255},
        {{0, 0, 50, 40}, 40, 36, 1, 90}, {{-9, -9, 20, 20}, -30, -2, 0, 255},
        {{0, 0, 50, 40}, 3, 5, 1, 128},  {{0, 0, 50, 40}, 3, 5, 9, 255},
        {{0, 0, 50, 40}, 3, 5, -1, 255}, {{0, 0, 50, 40}, 2000000000, 0, 0, 255},
        {{0, 0, 0, 0}, 3, 5, 0, 255},    {{0, 0, 50, 40}, 3, 5, 0, 0},
    };
    for (const Format format : {Format::colour, Format::mask, Format::rle, Format::rlemask}) {
        const Image image(copyOf(picture), format, 3);
        ASSERT_EQ(image.height(), 8);
        for (const Row& row : rows) {
            Drawing::Surface target = copyOf(ground);
            image.draw(target.view(), row.clip, row.x, row.y,
                       {.frame = row.frame, .opacity = row.opacity, .colour = kColour});
            const int top = std::clamp(row.frame, 0, 2) * 8;
            for (int y = 0; y < 40; ++y) {
                for (int x = 0; x < 50; ++x) {
                    const Pixel before = ground.view().at(x, y);
                    const Pixel after = target.view().at(x, y);
                    const int sx = x - row.x;
                    const int sy = y - row.y;
                    if (!row.clip.contains(x, y) || sx < 0 || sy < 0 || sx >= 37 || sy >= 8) {
                        ASSERT_EQ(after, before) << x << "," << y;
                        continue;
                    }
                    Pixel source = picture.view().at(sx, top + sy);
                    double opacity = row.opacity / 255.0;
                    if (image.isMask()) {
                        opacity *= (source >> 24) / 255.0;
                        source = kColour;
                    }
                    for (const int shift : {0, 8, 16, 24}) {
                        ASSERT_NEAR(after >> shift & 255, plainly(source, before, opacity, shift), 2.0)
                            << static_cast<int>(format) << " at " << x << "," << y;
                    }
                }
            }
        }
    }
}

TEST(ImageDrawing, codedPicturesAreWorthTheirName) {
    // A knob: a disc with a soft edge and a plain face on nothing.
    Drawing::Surface knob(128, 128);
    for (int y = 0; y < 128; ++y) {
        for (int x = 0; x < 128; ++x) {
            const double inside = 50.0 - std::hypot(x - 63.5, y - 63.5);
            const auto alpha = static_cast<unsigned>(255.0 * std::clamp(inside, 0.0, 1.0));
            knob.view().at(x, y) = Drawing::pixelOf(alpha, alpha / 2, alpha / 3, alpha / 4);
        }
    }
    const std::size_t plain = Image(copyOf(knob), Format::colour).bytes();
    EXPECT_EQ(plain, 128U * 128U * 4U);
    EXPECT_LT(Image(copyOf(knob), Format::rle).bytes(), plain / 10);
    EXPECT_LT(Image(copyOf(knob), Format::rlemask).bytes(), Image(copyOf(knob), Format::mask).bytes() / 5);
    // And pictures that gain nothing lose little.
    const std::size_t noise = Image(TestPictures::random(128, 128, 5), Format::colour).bytes();
    EXPECT_LT(Image(TestPictures::random(128, 128, 5), Format::rle).bytes(), noise * 5 / 4);
}

TEST(ImageDrawing, onlyPlainColourHandsOutItsPixels) {
    EXPECT_EQ(Image(Drawing::Surface(3, 4), Format::colour).pixels().height, 4);
    for (const Format format : {Format::mask, Format::rle, Format::rlemask}) {
        try {
            Image(Drawing::Surface(3, 4), format).pixels();
            ADD_FAILURE();
        } catch (const Images::ImageError& error) {
            EXPECT_STREQ(error.what(), "Image is of incorrect type");
        }
    }
}

TEST(Film, showsTheNearerFrameOrSomeOfBoth) {
    Drawing::Surface pixels(1, 3);
    const Pixel frames[] = {0xFF000000, 0xFF640000, 0x00000000};
    std::copy_n(frames, 3, pixels.view().pixels);
    const auto image = std::make_shared<const Image>(std::move(pixels), Format::colour, 3);
    struct Row {
        double position;
        Pixel nearest;
        Pixel blended;
    };
    const Row rows[] = {
        {0.0, 0xFF000000, 0xFF000000},  {0.4, 0xFF000000, 0xFF280000},  {0.6, 0xFF640000, 0xFF3C0000},
        {1.0, 0xFF640000, 0xFF640000},  {1.8, 0x00000000, 0x33140000},  {2.0, 0x00000000, 0x00000000},
        {-5.0, 0xFF000000, 0xFF000000}, {99.0, 0x00000000, 0x00000000}, {NAN, 0xFF000000, 0xFF000000},
    };
    for (const Row& row : rows) {
        for (const bool interpolate : {false, true}) {
            Drawing::Surface target(2, 2);
            Images::Film(image, interpolate).draw(target.view(), target.view().bounds(), 1, 1, row.position);
            EXPECT_EQ(target.view().at(1, 1), interpolate ? row.blended : row.nearest) << row.position;
            EXPECT_EQ(target.view().at(0, 1), 0U);
        }
    }
    for (const Format format : {Format::mask, Format::rle, Format::rlemask}) {
        const auto coded = std::make_shared<const Image>(Drawing::Surface(1, 3), format, 3);
        EXPECT_NO_THROW(Images::Film(coded, false));
        try {
            Images::Film(coded, true);
            ADD_FAILURE();
        } catch (const Images::ImageError& error) {
            EXPECT_STREQ(error.what(), "Invalid film image type");
        }
    }
}
