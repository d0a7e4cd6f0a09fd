// Pictures as they have been looked at and found right. Where one differs, the new one is left beside the test.
#include "Drawn.h"

#include "drawing/Compose.h"

#include <gtest/gtest.h>
#include <png.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

struct Rgba {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

Rgba readPng(const std::string& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    Rgba result;
    if (png_image_begin_read_from_file(&image, file.c_str())) {
        image.format = PNG_FORMAT_RGBA;
        result.width = static_cast<int>(image.width);
        result.height = static_cast<int>(image.height);
        result.bytes.resize(PNG_IMAGE_SIZE(image));
        png_image_finish_read(&image, nullptr, result.bytes.data(), 0, nullptr);
    }
    return result;
}

class Golden : public testing::TestWithParam<const char*> {};

TEST_P(Golden, LooksAsItDid) {
    const std::string name = GetParam();
    std::ifstream file(MURMELON_GOLDEN "/" + name + ".ovs");
    const std::string document{std::istreambuf_iterator<char>(file), {}};
    auto picture = OVSTest::drawn(document);
    ASSERT_EQ(picture.error, "");
    const auto actual = Drawing::straightRGBA(picture.pixels.view());
    const Rgba expected = readPng(MURMELON_GOLDEN "/" + name + ".png");
    // Straight colours of faint pixels say little: they count as far as they are seen.
    constexpr int kTolerance = 6;
    int differing = expected.bytes.size() == actual.size() ? 0 : -1;
    for (std::size_t i = 0; differing >= 0 && i < actual.size(); i += 4) {
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const auto seen = [&](const std::uint8_t* pixel) {
                return channel == 3 ? pixel[3] : pixel[channel] * pixel[3] / 255;
            };
            if (std::abs(seen(&actual[i]) - seen(&expected.bytes[i])) > kTolerance) {
                ++differing;
                break;
            }
        }
    }
    // Rounding may fall otherwise with another compiler, in a pixel here and there.
    const int allowed = static_cast<int>(actual.size() / 4 / 1000);
    if (differing < 0 || differing > allowed) {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = static_cast<png_uint_32>(picture.pixels.width());
        image.height = static_cast<png_uint_32>(picture.pixels.height());
        image.format = PNG_FORMAT_RGBA;
        const std::string path = name + ".actual.png";
        png_image_write_to_file(&image, path.c_str(), 0, actual.data(), 0, nullptr);
        ADD_FAILURE() << differing << " pixels differ (-1: its size); see " << path;
    }
}

INSTANTIATE_TEST_SUITE_P(Pictures, Golden, testing::Values("paints", "strokes", "masks"),
                         [](const auto& row) { return std::string(row.param); });

} // namespace
