// Runs the examples of docs/images.md: a block tells what it is by its name, the next one what comes of it.
#include "TestPictures.h"

#include "fonts/FontReading.h"
#include "images/ImageLibrary.h"
#include "zekt/Errors.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Example {
    std::string kind;
    std::string text;
    std::string expected;
};

std::vector<Example> examplesOf(const std::string& page) {
    std::vector<Example> examples;
    std::ifstream file(page);
    std::string line;
    while (std::getline(file, line)) {
        if (!line.starts_with("```")) {
            continue;
        }
        const std::string kind = line.substr(3);
        std::string text;
        while (std::getline(file, line) && line != "```") {
            text += (text.empty() ? "" : "\n") + line;
        }
        if (kind == "output") {
            examples.back().expected = text;
        } else if (kind != "sh") {
            examples.push_back({kind, text, {}});
        }
    }
    return examples;
}

class Page : public testing::Test {
protected:
    std::filesystem::path folder_ = std::filesystem::temp_directory_path() / "murmelon-images-page";
    Images::ImageLibrary library_{Resources::Lookup(folder_)};

    void SetUp() override {
        std::filesystem::create_directories(folder_);
        const auto write = [&](const std::string& name, const std::string& contents) {
            std::ofstream(folder_ / name, std::ios::binary) << contents;
        };
        write("lamp_X2.png", TestPictures::placedPng(16, 32));
        write("dial_X2.png", TestPictures::placedPng(100, 20, {.texts = {{"PixelStrip.Frames", "5"}}}));
        write("digits.png", TestPictures::placedPng(6, 110));
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string outcome(const Example& example) {
        std::ostringstream text;
        const Stackbrace::Document document(example.text);
        if (example.kind == "image") {
            const auto image = library_.image(Images::readImageSpecification(document.root()), 1.0);
            text << image->width() << " x " << image->height();
        } else if (example.kind == "film") {
            const auto film = library_.film(Images::readFilmSpecification(document.root()), 1.0);
            text << film.frames() << " frames of " << film.width() << " x " << film.height();
        } else if (example.kind == "font") {
            const auto font = library_.font(Images::readFontSpecification(document.root()), 1.0);
            text << "ascent " << font->ascent() << ", line " << font->lineHeight();
        } else if (example.kind == "ovsfont") {
            const auto font = OVS::readFont(example.text);
            const auto& metrics = font->metrics();
            text << "upm=" << metrics.unitsPerEm << " ascent=" << metrics.ascent
                 << " descent=" << metrics.descent << " linegap=" << metrics.lineGap
                 << " glyphs=" << font->glyphCount() << " kerns=" << font->kerningCount();
        } else {
            ADD_FAILURE() << "a block of an unknown kind: " << example.kind;
        }
        return text.str();
    }
};

} // namespace

TEST_F(Page, everyExampleDoesWhatThePageSays) {
    std::map<std::string, int> seen;
    for (const Example& example : examplesOf(MURMELON_PAGE)) {
        ++seen[example.kind];
        std::string outcome;
        try {
            outcome = this->outcome(example);
        } catch (const ZEKT::Exception& error) {
            outcome = std::string("error: ") + error.className() + ": " + error.what();
        } catch (const std::exception& error) {
            outcome = std::string("error: ") + error.what();
        }
        EXPECT_EQ(outcome, example.expected) << example.text;
    }
    for (const char* kind : {"image", "film", "font", "ovsfont"}) {
        EXPECT_GE(seen[kind], 2) << kind;
    }
}
