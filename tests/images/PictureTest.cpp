#include "TestPictures.h"

#include "images/ImageAdjustment.h"
#include "images/ImageError.h"
#include "images/Png.h"
#include "images/Resample.h"

#include <gtest/gtest.h>
#include <zlib.h>

using Drawing::Pixel;
using TestPictures::placed;

namespace {

std::string failureOf(const std::string& bytes) {
    try {
        Images::readPng(bytes);
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace

TEST(Png, becomesPremultipliedPixelsWhateverItsForm) {
    struct Row {
        int colourType;
        int depth;
        bool interlaced;
        Pixel expected; // of the samples 200, 100, 50, 128 as far as the form has them
    };
    const Row rows[] = {
        {PNG_COLOR_TYPE_RGB_ALPHA, 8, false, 0x80643219},  {PNG_COLOR_TYPE_RGB_ALPHA, 16, true, 0x80643219},
        {PNG_COLOR_TYPE_RGB, 8, true, 0xFFC86432},         {PNG_COLOR_TYPE_GRAY, 8, false, 0xFFC8C8C8},
        {PNG_COLOR_TYPE_GRAY_ALPHA, 8, false, 0x644E4E4E},
    };
    const unsigned samples[] = {200, 100, 50, 128};
    for (const Row& row : rows) {
        const auto bytes = TestPictures::png(
            9, 5, [&](int, int, int channel) { return samples[channel]; },
            {.colourType = row.colourType, .depth = row.depth, .interlaced = row.interlaced});
        const Images::Picture picture = Images::readPng(bytes);
        ASSERT_EQ(picture.pixels.width(), 9);
        ASSERT_EQ(picture.pixels.height(), 5);
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 9; ++x) {
                ASSERT_EQ(picture.pixels.view().at(x, y), row.expected) << row.colourType << " " << row.depth;
            }
        }
    }
}

TEST(Png, damageIsReportedAsTheLibraryPutsIt) {
    const std::string good = TestPictures::placedPng(40, 30);
    EXPECT_EQ(failureOf(good), "");
    std::string flipped = good;
    flipped[20] = static_cast<char>(flipped[20] ^ 1); // in the header, which has a checksum
    std::string huge = good;
    huge.replace(16, 8, std::string("\0\0\xFF\xFF\0\0\xFF\xFF", 8));
    const std::pair<std::string, std::string> rows[] = {
        {"", "Error reading PNG image : Read Error"},
        {"No picture at all", "Error reading PNG image : Not a PNG file"},
        {good.substr(0, 60), "Error reading PNG image : Read Error"},
        {good.substr(0, good.size() - 12), "Error reading PNG image : Read Error"},
        {flipped, "Error reading PNG image : IHDR: CRC error"},
        {huge, "Error reading PNG image : IHDR: CRC error"},
    };
    for (const auto& [bytes, failure] : rows) {
        EXPECT_EQ(failureOf(bytes), failure);
    }
}

TEST(Png, aPictureLargerThanItsDataCanBeIsRefusedBeforeItGetsMemory) {
    std::string bytes = TestPictures::placedPng(1, 1);
    const auto claim = [&](const char(&sides)[9]) {
        bytes.replace(16, 8, std::string(sides, 8));
        const auto sum = crc32(0, reinterpret_cast<const Bytef*>(bytes.data() + 12), 17);
        for (int i = 0; i < 4; ++i) {
            bytes[29 + static_cast<std::size_t>(i)] = static_cast<char>(sum >> (24 - 8 * i) & 255U);
        }
        return failureOf(bytes);
    };
    EXPECT_EQ(claim("\0\0\x10\0\0\0\x10\0"), "Error reading PNG image : Not enough image data");
    EXPECT_EQ(claim("\0\1\0\0\0\0\xFF\0"), "Error reading PNG image : Image is too large");
    EXPECT_EQ(claim("\0\x10\0\0\0\0\0\1"), "Error reading PNG image : Invalid IHDR data");
}

TEST(Png, stripsOfPixelsAreLaidDownwards) {
    struct Row {
        std::string entry;
        int frames;
    };
    for (const Row& row :
         {Row{"3", 3}, Row{"4", 4}, Row{" 2 ", 2}, Row{"1", 1}, Row{"0", 1}, Row{"-3", 1}, Row{"many", 1}}) {
        for (const bool atEnd : {false, true}) {
            const auto picture = Images::readPng(TestPictures::placedPng(
                12, 5, {.texts = {{"Title", "x"}, {"PixelStrip.Frames", row.entry}}, .textsAtEnd = atEnd}));
            EXPECT_EQ(picture.frames, row.frames) << row.entry;
            const int width = 12 / row.frames;
            ASSERT_EQ(picture.pixels.width(), width);
            ASSERT_EQ(picture.pixels.height(), 5 * row.frames);
            for (int y = 0; y < 5 * row.frames; ++y) {
                for (int x = 0; x < width; ++x) {
                    ASSERT_EQ(picture.pixels.view().at(x, y), placed(x + y / 5 * width, y % 5));
                }
            }
        }
    }
    const std::string unfit = TestPictures::placedPng(100, 2, {.texts = {{"PixelStrip.Frames", "3"}}});
    EXPECT_EQ(failureOf(unfit), "Image width incompatible with pixelstrip specification");
    EXPECT_EQ(failureOf(TestPictures::placedPng(10, 2, {.texts = {{"PixelStrip.Frames", "20"}}})),
              "Image width incompatible with pixelstrip specification");
}

TEST(Resample, averagesWhatAPixelCovers) {
    Drawing::Surface picture(4, 2);
    const Pixel rows[2][4] = {{0xFF000000, 0xFF0000FF, 0, 0x80800000},
                              {0xFF000000, 0xFF0000FF, 0, 0x80000080}};
    for (int y = 0; y < 2; ++y) {
        std::copy_n(rows[y], 4, picture.view().row(y));
    }
    const Drawing::Surface half = Images::resampled(picture.view(), 2, 1);
    EXPECT_EQ(half.view().at(0, 0), 0xFF000080);
    EXPECT_EQ(half.view().at(1, 0), 0x40200020);
    const Drawing::Surface same = Images::resampled(picture.view(), 4, 2);
    EXPECT_EQ(same.view().at(3, 1), 0x80000080);
    const Drawing::Surface twice = Images::resampled(picture.view(), 8, 4);
    EXPECT_EQ(twice.view().at(0, 0), 0xFF000000);
    EXPECT_EQ(twice.view().at(1, 0), 0xFF000040);
    EXPECT_EQ(twice.view().at(2, 0), 0xFF0000BF);
}

TEST(Resample, keepsTheMeanAndPlainColours) {
    const auto picture = TestPictures::random(60, 45, 7);
    for (const auto& [width, height] :
         {std::pair(7, 5), std::pair(59, 44), std::pair(1, 1), std::pair(60, 9)}) {
        const auto smaller = Images::resampled(picture.view(), width, height);
        const auto mean = [](const Drawing::Surface& surface) {
            double sum = 0.0;
            for (int y = 0; y < surface.height(); ++y) {
                for (int x = 0; x < surface.width(); ++x) {
                    EXPECT_TRUE(Drawing::isPremultiplied(surface.view().at(x, y)));
                    sum += Drawing::alphaOf(surface.view().at(x, y));
                }
            }
            return sum / surface.width() / surface.height();
        };
        EXPECT_NEAR(mean(smaller), mean(picture), 0.5) << width << "x" << height;
    }
    Drawing::Surface plain(31, 17);
    std::fill_n(plain.view().pixels, 31 * 17, 0x90123456U);
    for (const int side : {1, 5, 16, 17, 31, 64, 100}) {
        const auto other = Images::resampled(plain.view(), side, side);
        for (int i = 0; i < side * side; ++i) {
            ASSERT_EQ(other.view().pixels[i], 0x90123456U) << side;
        }
    }
}

TEST(Resample, framesDoNotShowInEachOther) {
    Drawing::Surface frames(3, 9);
    for (int y = 0; y < 9; ++y) {
        std::fill_n(frames.view().row(y), 3, 0xFF000000U | static_cast<Pixel>(y / 3) * 100);
    }
    for (const int height : {1, 2, 4, 7}) {
        const auto other = Images::resampledFrames(frames.view(), 3, 2, height);
        ASSERT_EQ(other.height(), 3 * height);
        for (int y = 0; y < other.height(); ++y) {
            EXPECT_EQ(other.view().at(1, y), 0xFF000000U | static_cast<Pixel>(y / height) * 100);
        }
    }
}

TEST(ImageAdjustment, gammaTouchesColoursAndInMasksAlpha) {
    struct Row {
        Pixel pixel;
        double gamma;
        double opacity;
        bool isMask;
        Pixel expected;
    };
    const Row rows[] = {
        {0xFF8040FF, 2.0, 1.0, false, 0xFF4010FF}, {0x80402000, 2.0, 1.0, false, 0x80200800},
        {0xFF8040FF, 0.0, 1.0, false, 0xFFFFFFFF}, {0x00000000, 0.0, 1.0, false, 0x00000000},
        {0x80808080, 1.0, 0.5, false, 0x40404040}, {0x80402000, 2.0, 1.0, true, 0x40000000},
        {0x80402000, 1.0, 0.0, false, 0x00000000},
    };
    for (const Row& row : rows) {
        Drawing::Surface surface(1, 1);
        surface.view().at(0, 0) = row.pixel;
        Images::adjust(surface.view(), row.gamma, row.opacity, row.isMask);
        EXPECT_EQ(surface.view().at(0, 0), row.expected) << std::hex << surface.view().at(0, 0);
    }
}
