#include "TestPictures.h"

#include "images/ImageError.h"
#include "images/ImageLibrary.h"
#include "zekt/Errors.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

using TestPictures::placed;

namespace {

const std::string kBars = "format ovs-1 requires:ZEKT-1\\nbounds 0,0,4,6\\nfill red\\nrect 0,0,4,2\\n"
                          "fill lime\\nrect 0,2,4,2\\nfill blue\\nrect 0,4,4,2";

class LibraryTest : public testing::Test {
protected:
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() /
        (std::string("murmelon-images-") + testing::UnitTest::GetInstance()->current_test_info()->name());
    Images::ImageLibrary library_{Resources::Lookup(folder_)};

    void SetUp() override {
        std::filesystem::create_directories(folder_);
        write("double_X2.png", TestPictures::placedPng(8, 12));
        write("single.png", TestPictures::placedPng(8, 12));
        write("odd.png", TestPictures::placedPng(4, 31));
        write("strip.png", TestPictures::placedPng(12, 4, {.texts = {{"PixelStrip.Frames", "3"}}}));
        write("broken.png", "nothing at all");
        write("bars.ovs", "format ovs-1 requires:ZEKT-1\nbounds 0,0,4,6\nfill red\nrect 0,0,4,6");
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    void write(const std::string& name, const std::string& contents) const {
        std::ofstream(folder_ / name, std::ios::binary) << contents;
    }

    std::shared_ptr<const Images::Image> image(const std::string& text,
                                               double scale = Images::kOwnResolution) {
        const Stackbrace::Document document(text);
        return library_.image(Images::readImageSpecification(document.root()), scale);
    }

    Images::Film film(const std::string& text, double scale = Images::kOwnResolution) {
        const Stackbrace::Document document(text);
        return library_.film(Images::readFilmSpecification(document.root()), scale);
    }

    template <class Make>
    static std::string failureOf(Make make) {
        try {
            make();
            return {};
        } catch (const ZEKT::Exception& error) {
            return std::string(error.className()) + ": " + error.what();
        } catch (const std::exception& error) {
            return error.what();
        }
    }
};

} // namespace

TEST_F(LibraryTest, sizesFollowResolutionDisplayAndSpecification) {
    struct Row {
        std::string specification;
        double scale;
        int width;
        int height;
    };
    const Row rows[] = {
        {"double", Images::kOwnResolution, 8, 12}, // as it is stored
        {"double", 1.0, 4, 6},
        {"double", 2.0, 8, 12},
        {"double", 1.25, 5, 8},
        {"double_X2", 1.0, 4, 6},
        {"single", 1.0, 8, 12},
        {"single", 2.0, 16, 24},
        {"single.png", 1.0, 8, 12},
        {"{ name: double, scale: 0.5 }", 2.0, 4, 6},
        {"{ name: double, scale: 0.5 }", Images::kOwnResolution, 4, 6},
        {"{ name: single, scale: 0.001 }", 1.0, 1, 1},
        {"{ ovsFile: bars }", Images::kOwnResolution, 4, 6},
        {"{ ovsFile: \"bars.ovs\" }", 1.5, 6, 9},
        {"{ ovsFile: bars, scale: 2 }", 1.5, 12, 18},
        {"{ ovsCode: \"" + kBars + "\", slices: 3 }", 1.5, 6, 3},
        {"{ name: double, slices: 3 }", 1.0, 4, 2},
        {"strip", 1.0, 4, 12},
    };
    for (const Row& row : rows) {
        const auto made = image(row.specification, row.scale);
        EXPECT_EQ(made->width(), row.width) << row.specification << " at " << row.scale;
        EXPECT_EQ(made->height(), row.height) << row.specification << " at " << row.scale;
    }
}

TEST_F(LibraryTest, slicesAreBandsFromTheTop) {
    for (int index = 0; index < 3; ++index) {
        const auto slice = image("{ name: single, slices: 3, index: " + std::to_string(index) + " }");
        ASSERT_EQ(slice->height(), 4);
        EXPECT_EQ(slice->pixels().at(5, 0), placed(5, 4 * index));
        EXPECT_EQ(slice->pixels().at(5, 3), placed(5, 4 * index + 3));
        const auto bar =
            image("{ ovsCode: \"" + kBars + "\", slices: 3, index: " + std::to_string(index) + " }", 1.5);
        const Drawing::Pixel colours[] = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF};
        for (int y = 0; y < 3; ++y) {
            EXPECT_EQ(bar->pixels().at(2, y), colours[index]) << index << " " << y;
        }
    }
    EXPECT_EQ(image("{ name: odd, slices: 1 }")->height(), 31);
}

TEST_F(LibraryTest, filmsHaveTheFramesTheyAreGivenOrTheStripOfThePicture) {
    EXPECT_EQ(film("{ image: single, frames: 4 }").frames(), 4);
    EXPECT_EQ(film("{ image: single, frames: 4 }").height(), 3);
    EXPECT_EQ(film("strip").frames(), 3);
    EXPECT_EQ(film("{ image: strip }", 0.5).height(), 2);
    EXPECT_EQ(film("{ image: strip, frames: 6 }").frames(), 6);
    EXPECT_EQ(film("single").frames(), 1);
    EXPECT_EQ(film("{ image: { name: single, slices: 3, index: 1 }, frames: 2 }").image().pixels().at(0, 0),
              placed(0, 4));
}

TEST_F(LibraryTest, tellsWhatIsWrong) {
    const std::pair<std::string, std::string> images[] = {
        {"nothing", "Missing image: nothing"},
        {"{ ovsFile: nothing }", "Missing image: nothing"},
        {"../single", "Missing image: ../single"},
        {"broken", "Error reading PNG image : Not a PNG file"},
        {"{ name: odd, slices: 2 }", "Image height not dividable by slice count"},
        {"{ name: odd, slices: 1000000000 }", "Image height not dividable by slice count"},
        {"{ ovsFile: bars, slices: 4 }", "Image height not dividable by slice count"},
        {"{ ovsCode: \"format ovs-1\\nrect 0,0,1,1\" }", "ZEKT::RunTimeException: Undeclared bounds"},
        {"{ ovsCode: \"\" }", "ZEKT::RunTimeException: Undeclared bounds"},
        {"{ ovsCode: \"bounds 0,1,2,3\" }",
         "ZEKT::RunTimeException: OVS bounds need to be zero based: 0,1,2,3"},
        {"{ ovsCode: \"bounds 0,0,1,$x\" }", "ZEKT::RunTimeException: Variable x does not exist"},
        {"{ ovsCode: \"bounds 0,0,1,$x\", defines: { x: 3 } }", ""},
    };
    for (const auto& [text, failure] : images) {
        EXPECT_EQ(failureOf([&, t = text] { image(t); }), failure) << text;
    }
    // Still so when a display makes the pixels dividable.
    EXPECT_EQ(failureOf([&] { image("{ ovsFile: bars, slices: 4 }", 2.0); }),
              "Image height not dividable by slice count");
    EXPECT_EQ(failureOf([&] { film("{ image: odd, frames: 2 }"); }),
              "Image height not dividable by slice count");
    EXPECT_EQ(
        failureOf([&] { film("{ image: { name: odd, format: mask }, frames: 31, interpolate: true }"); }),
        "Invalid film image type");
    const Stackbrace::Document single("single");
    EXPECT_EQ(failureOf([&] { library_.vectorImage(Images::readImageSpecification(single.root())); }),
              "Image is of incorrect type for OVS");
}

TEST_F(LibraryTest, keepsWhatItMadeUntilItIsCleared) {
    const auto first = image("single", 1.0);
    EXPECT_EQ(image("{ name: single }", 1.0), first);
    EXPECT_NE(image("single", 2.0), first);
    EXPECT_NE(image("{ name: single, opacity: 0.5 }", 1.0), first);
    EXPECT_NE(&film("{ image: single, frames: 2 }", 1.0).image(), first.get());
    std::filesystem::remove(folder_ / "single.png");
    EXPECT_EQ(image("{ name: single, slices: 3 }", 1.0)->height(), 4); // its pixels are kept, too
    library_.clear();
    EXPECT_EQ(failureOf([&] { image("single", 1.0); }), "Missing image: single");
    EXPECT_EQ(first->pixels().at(3, 3), placed(3, 3));
}
