#include "CommandRun.h"

#include <png.h>

#include <cstdint>

namespace {

using CommandRun::CommandTest;

class ImageScriptCommand : public CommandTest {
protected:
    struct Picture {
        unsigned width = 0;
        unsigned height = 0;
        std::vector<std::uint8_t> rgba;
    };

    Picture picture(const std::string& name) const {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        Picture result;
        if (png_image_begin_read_from_file(&image, (folder_ / name).string().c_str())) {
            image.format = PNG_FORMAT_RGBA;
            result = {image.width, image.height, std::vector<std::uint8_t>(PNG_IMAGE_SIZE(image))};
            png_image_finish_read(&image, nullptr, result.rgba.data(), 0, nullptr);
        }
        return result;
    }
};

TEST_F(ImageScriptCommand, WritesBoundsTimesScaleWithStraightColours) {
    const auto result = run({"ovs", "-", "out.png", "--scale", "2", "--define", "c=rgb(1,0.5,0,0.5)"},
                            "format ovs-1 requires:ZEKT-1\nbounds 0,0,3,2\ntrace colour $c\nfill $c\nrect 0,0,1,2\n");
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, "colour rgb(1,0.5,0,0.5)\n");
    EXPECT_EQ(result.status, 0);
    const Picture out = picture("out.png");
    ASSERT_EQ(out.width, 6U);
    ASSERT_EQ(out.height, 4U);
    EXPECT_EQ(std::vector(out.rgba.begin() + 4, out.rgba.begin() + 8), (std::vector<std::uint8_t>{255, 128, 0, 128}));
    EXPECT_EQ(out.rgba[11], 0);
}

TEST_F(ImageScriptCommand, SaysWhatFailedAndLeavesThePictureThatWasThere) {
    write("out.png", "before");
    write("bad.ovs", "bounds 0,0,9,9\ncontext [\n  star 0,0,0,5\n]\n");
    auto result = run({"ovs", "bad.ovs", "out.png"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              "error: ZEKT::RunTimeException: star points out of range [1..10000]: 0\nin: star 0,0,0,5\n");
    EXPECT_EQ(read("out.png"), "before");
    result = run({"ovs", "-", "out.png", "--scale", "40"}, "bounds 0,0,32767,1\n");
    EXPECT_EQ(result.errors,
              "error: ZEKT::RunTimeException: Image too large: 1310680 x 40 pixels\nin: bounds 0,0,32767,1\n");
    EXPECT_EQ(run({"ovs", "bad.ovs", "out.png", "--define", "novalue"}).status, 2);
    EXPECT_EQ(run({"ovs", "bad.ovs", "out.png", "--scale", "0"}).status, 2);
    EXPECT_EQ(run({"ovs", "bad.ovs"}).status, 2);
}

} // namespace
