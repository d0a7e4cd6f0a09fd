// A scene as large as the editor, 470 x 320: 300 paths, a third of them in gradients, and text. As a document that is read
// and drawn, as one that has been read before, and drawn by cairo from the same numbers.
#include "drawing/PathData.h"
#include "ovs/Document.h"
#include "zekt/Executor.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 470;
constexpr int kHeight = 320;
constexpr double kTextSize = 11.0;

// The outlines of a font document, without its kerning.
class Outlines : public OVS::Font {
public:
    struct Glyph {
        Drawing::Path path;
        double advance = 0.0;
    };

    Outlines() {
        std::ifstream file(MURMELON_BENCH_FONT);
        std::string word;
        for (std::string line; std::getline(file, line);) {
            const auto open = line.find('"');
            const auto close = line.rfind('"');
            if (!line.starts_with("glyph ") || line.size() < 8 || line[7] != ' ' || close == open) {
                continue;
            }
            auto& glyph = glyphs_[line[6]];
            glyph.advance = std::stod(line.substr(8));
            glyph.path = Drawing::parsePathData(line.substr(open + 1, close - open - 1));
        }
    }

    const Glyph* find(char16_t c) const {
        const auto found = glyphs_.find(static_cast<char>(c));
        return found == glyphs_.end() ? nullptr : &found->second;
    }

    OVS::TextRun layOut(std::u16string_view text, double size, double tracking) const override {
        OVS::TextRun run;
        run.scale = size / 1000.0;
        for (const char16_t c : text) {
            if (const Glyph* const glyph = find(c)) {
                run.glyphs.push_back({&glyph->path, run.width});
                run.width += glyph->advance * run.scale + tracking;
            } else {
                run.width += size / 4;
            }
        }
        return run;
    }

private:
    std::map<char, Glyph> glyphs_;
};

class OneFont : public OVS::FontSource {
public:
    std::shared_ptr<const OVS::Font> find(std::string_view) override { return font_; }
    std::shared_ptr<const OVS::Font> read(ZEKT::Frame&, const ZEKT::Argument&) override { return font_; }
    const Outlines& outlines() const { return *font_; }

private:
    std::shared_ptr<const Outlines> font_ = std::make_shared<Outlines>();
};

enum class Style { flat, linear, radial, stroke };

struct Shape {
    Style style;
    std::string data;
    Drawing::Path path;
    double x, y, size;
    unsigned colour, colour2; // 0xRRGGBB
};

struct Line {
    std::string text;
    double x, y;
};

struct Scene {
    std::vector<Shape> shapes;
    std::vector<Line> lines;
    std::string document;
};

std::string hex(unsigned colour) {
    char buffer[8];
    std::snprintf(buffer, sizeof buffer, "#%06x", colour);
    return buffer;
}

Scene makeScene() {
    std::mt19937 random(42);
    const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); };
    Scene scene;
    std::ostringstream out;
    out << "format ovs-1 requires:ZEKT-1\nbounds 0,0,470,320\nwipe #202428\n";
    for (int i = 0; i < 300; ++i) {
        Shape shape;
        shape.style = static_cast<Style>(i % 6 < 2 ? 0 : i % 6 - 2 > 2 ? 3 : i % 6 - 1 > 3 ? 3 : i % 6 - 1);
        shape.size = 12 + upTo(40);
        shape.x = upTo(kWidth - 20);
        shape.y = upTo(kHeight - 20);
        shape.colour = random() & 0xFFFFFFU;
        shape.colour2 = random() & 0xFFFFFFU;
        std::ostringstream data;
        const double s = shape.size;
        if (i % 3 == 0) {
            data << 'M' << shape.x << ' ' << shape.y << 'h' << s << 'q' << s / 4 << " 0 " << s / 4 << ' ' << s / 4
                 << 'v' << s / 2 << 'h' << -s * 1.25 << 'z';
        } else if (i % 3 == 1) {
            data << 'M' << shape.x << ' ' << shape.y << 'c' << s << ' ' << -s << ' ' << 2 * s << ' ' << s << ' ' << s
                 << ' ' << s << 's' << -s << ' ' << s / 2 << ' ' << -s << ' ' << -s << 'z';
        } else {
            data << 'M' << shape.x << ' ' << shape.y;
            for (int k = 0; k < 8; ++k) {
                data << 'l' << upTo(14) << ' ' << upTo(24) - 12;
            }
        }
        shape.data = data.str();
        shape.path = Drawing::parsePathData(shape.data);
        if (shape.style == Style::stroke) {
            out << "fill none\npen " << hex(shape.colour) << " width:1.5 joints:curve\n";
        } else {
            out << "pen none\nfill ";
            if (shape.style == Style::flat) {
                out << hex(shape.colour) << " opacity:0.8\n";
            } else {
                out << "gradient:[" << (shape.style == Style::linear ? "linear " : "radial ") << shape.x << ','
                    << shape.y << ',';
                if (shape.style == Style::linear) {
                    out << shape.x + s << ',' << shape.y + s;
                } else {
                    out << s;
                }
                out << " from:" << hex(shape.colour) << " to:" << hex(shape.colour2) << "]\n";
            }
        }
        out << "path svg:[" << shape.data << "]\n";
        scene.shapes.push_back(std::move(shape));
    }
    out << "font Jost size:" << kTextSize << " color:white\n";
    for (int i = 0; i < 24; ++i) {
        scene.lines.push_back({"Formant shift", 8.0 + i % 4 * 115, 20.0 + i / 4 * 52});
        out << "text [" << scene.lines.back().text << "] at:" << scene.lines.back().x << ','
            << scene.lines.back().y << "\n";
    }
    scene.document = out.str();
    return scene;
}

const Scene& scene() {
    static const Scene made = makeScene();
    return made;
}

OneFont& fonts() {
    static OneFont font;
    return font;
}

void readAndDraw(benchmark::State& state) {
    for (auto _ : state) {
        OVS::Document document(scene().document);
        benchmark::DoNotOptimize(document.renderImage({.fonts = &fonts()}));
    }
}
BENCHMARK(readAndDraw)->Unit(benchmark::kMicrosecond);

void drawAgain(benchmark::State& state) {
    OVS::Document document(scene().document);
    for (auto _ : state) {
        benchmark::DoNotOptimize(document.renderImage({.fonts = &fonts()}));
    }
}
BENCHMARK(drawAgain)->Unit(benchmark::kMicrosecond);

void addPath(cairo_t* cairo, const Drawing::Path& path) {
    using Verb = Drawing::Path::Verb;
    const Drawing::Point* p = path.points().data();
    for (const Verb verb : path.verbs()) {
        switch (verb) {
        case Verb::move:
            cairo_move_to(cairo, p->x, p->y);
            p += 1;
            break;
        case Verb::line:
            cairo_line_to(cairo, p->x, p->y);
            p += 1;
            break;
        case Verb::quad: {
            double x, y;
            cairo_get_current_point(cairo, &x, &y);
            cairo_curve_to(cairo, x + (p[0].x - x) * 2 / 3, y + (p[0].y - y) * 2 / 3,
                           p[1].x + (p[0].x - p[1].x) * 2 / 3, p[1].y + (p[0].y - p[1].y) * 2 / 3, p[1].x, p[1].y);
            p += 2;
            break;
        }
        case Verb::cubic:
            cairo_curve_to(cairo, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
            p += 3;
            break;
        case Verb::close:
            cairo_close_path(cairo);
            break;
        }
    }
}

void setColour(cairo_t* cairo, unsigned colour, double alpha = 1.0) {
    cairo_set_source_rgba(cairo, (colour >> 16 & 255) / 255.0, (colour >> 8 & 255) / 255.0, (colour & 255) / 255.0,
                          alpha);
}

void addStop(cairo_pattern_t* pattern, double at, unsigned colour) {
    cairo_pattern_add_color_stop_rgb(pattern, at, (colour >> 16 & 255) / 255.0, (colour >> 8 & 255) / 255.0,
                                     (colour & 255) / 255.0);
}

void drawWithCairo(cairo_t* cairo) {
    setColour(cairo, 0x202428);
    cairo_paint(cairo);
    for (const Shape& shape : scene().shapes) {
        addPath(cairo, shape.path);
        if (shape.style == Style::stroke) {
            setColour(cairo, shape.colour);
            cairo_set_line_width(cairo, 1.5);
            cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
            cairo_stroke(cairo);
        } else if (shape.style == Style::flat) {
            setColour(cairo, shape.colour, 0.8);
            cairo_fill(cairo);
        } else {
            cairo_pattern_t* const pattern =
                shape.style == Style::linear
                    ? cairo_pattern_create_linear(shape.x, shape.y, shape.x + shape.size, shape.y + shape.size)
                    : cairo_pattern_create_radial(shape.x, shape.y, 0, shape.x, shape.y, shape.size);
            addStop(pattern, 0, shape.colour);
            addStop(pattern, 1, shape.colour2);
            cairo_set_source(cairo, pattern);
            cairo_fill(cairo);
            cairo_pattern_destroy(pattern);
        }
    }
    setColour(cairo, 0xFFFFFF);
    for (const Line& line : scene().lines) {
        const std::u16string text(line.text.begin(), line.text.end());
        const OVS::TextRun run = fonts().outlines().layOut(text, kTextSize, 0);
        for (const OVS::PlacedGlyph& glyph : run.glyphs) {
            cairo_save(cairo);
            cairo_translate(cairo, line.x + glyph.x, line.y);
            cairo_scale(cairo, run.scale, run.scale);
            addPath(cairo, *glyph.outline);
            cairo_restore(cairo);
        }
        cairo_fill(cairo);
    }
}

void cairoDraws(benchmark::State& state) {
    scene();
    fonts();
    for (auto _ : state) {
        cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kWidth, kHeight);
        cairo_t* const cairo = cairo_create(surface);
        drawWithCairo(cairo);
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
    }
}
BENCHMARK(cairoDraws)->Unit(benchmark::kMicrosecond);

} // namespace
