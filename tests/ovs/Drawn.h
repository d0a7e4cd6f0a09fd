// Draws a document as an image resource, with a font of blocks: every character is a filled square of half the
// size, but for "?", which the font lacks.
#pragma once

#include "drawing/Colour.h"
#include "ovs/Document.h"
#include "zekt/Errors.h"

#include <memory>
#include <string>
#include <vector>

namespace OVSTest {

class BlockFont : public OVS::Font {
public:
    BlockFont() { block_.addRect({0, -5, 5, 5}); }

    OVS::TextRun layOut(std::u16string_view text, double size, double tracking) const override {
        OVS::TextRun run;
        run.scale = size / 10.0;
        for (const char16_t c : text) {
            run.glyphs.push_back({&block_, run.width});
            run.width += size + tracking;
            run.complete = run.complete && c != u'?';
        }
        return run;
    }

private:
    Drawing::Path block_;
};

class BlockFonts : public OVS::FontSource {
public:
    std::shared_ptr<const OVS::Font> find(std::string_view name) override {
        return name == "Block" ? std::make_shared<BlockFont>() : nullptr;
    }
    std::shared_ptr<const OVS::Font> read(ZEKT::Frame&, const ZEKT::Argument&) override {
        return std::make_shared<BlockFont>();
    }
};

struct Drawn {
    Drawing::Surface pixels;
    std::vector<std::string> trace;
    std::string error; // "CLASS: MESSAGE", and " in: STATEMENT"

    Drawing::Pixel at(int x, int y) { return pixels.view().at(x, y); }
};

inline Drawn drawn(const std::string& document, double scale = 1.0) {
    Drawn result;
    BlockFonts fonts;
    OVS::Environment environment;
    environment.scale = scale;
    environment.fonts = &fonts;
    environment.variables = {{"feedbacks.sampleRate", "44100"}};
    environment.trace = [&](std::string_view line) { result.trace.emplace_back(line); };
    try {
        result.pixels = OVS::Document(document).renderImage(environment);
    } catch (const ZEKT::Exception& error) {
        result.error = std::string(error.className()) + ": " + error.what();
        result.error += error.statement().empty() ? "" : " in: " + error.statement();
    }
    return result;
}

} // namespace OVSTest
