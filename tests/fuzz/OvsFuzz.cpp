// Any text is an image or a script error; on a small view, so that it is the reading that gets exercised.
#include "drawing/Colour.h"
#include "ovs/Document.h"
#include "zekt/Errors.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

// A font whose characters are triangles.
class Triangles : public OVS::Font, public OVS::FontSource {
public:
    Triangles() {
        outline_.moveTo({0, 0});
        outline_.lineTo({5, -10});
        outline_.lineTo({10, 0});
    }

    OVS::TextRun layOut(std::u16string_view text, double size, double tracking) const override {
        OVS::TextRun run;
        run.scale = size / 10;
        for (std::size_t i = 0; i < text.size() && i < 100; ++i) {
            run.glyphs.push_back({&outline_, run.width});
            run.width += size + tracking;
        }
        return run;
    }
    std::shared_ptr<const OVS::Font> find(std::string_view) override { return std::make_shared<Triangles>(); }
    std::shared_ptr<const OVS::Font> read(ZEKT::Frame&, const ZEKT::Argument&) override { return find({}); }

private:
    Drawing::Path outline_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kStatements = 150;
    static Triangles fonts;
    int left = kStatements;
    OVS::Environment environment;
    environment.scale = 1.0;
    environment.fonts = &fonts;
    environment.progress = [&left] { return --left > 0; };
    OVS::Document document(std::string(reinterpret_cast<const char*>(data), size));
    Drawing::Surface surface(48, 32);
    try {
        document.draw(surface.view(), environment);
    } catch (const ZEKT::Exception&) {
    }
    for (int y = 0; y < surface.height(); ++y) {
        for (int x = 0; x < surface.width(); ++x) {
            if (!Drawing::isPremultiplied(surface.view().at(x, y))) {
                std::abort();
            }
        }
    }
    return 0;
}
