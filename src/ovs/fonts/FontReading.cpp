#include "fonts/FontReading.h"

#include "drawing/PathData.h"
#include "zekt/Interpreter.h"

#include <array>
#include <charconv>
#include <string>
#include <utility>
#include <vector>

namespace OVS {

namespace {

// As scripts write numbers.
std::string numberText(double number) {
    constexpr int kDigits = 13;
    std::array<char, 32> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, kDigits);
    return {text.data(), end.ptr};
}

std::string codeText(char16_t character) {
    return std::to_string(static_cast<unsigned>(character));
}

class FontReader final : public ZEKT::Executor {
public:
    explicit FontReader(TraceLine trace) : trace_(std::move(trace)) {}

    bool supportsFormat(const ZEKT::FormatStatement& format) override {
        return format.name == "ovsfont-1" && format.requirements.empty();
    }

    bool execute(ZEKT::Frame& frame, std::string_view name, const ZEKT::ArgumentText& text) override {
        if (name == "glyph") {
            ZEKT::Arguments arguments(frame, text);
            readGlyph(arguments);
        } else if (name == "kern") {
            ZEKT::Arguments arguments(frame, text);
            readKerning(arguments);
        } else if (name == "metrics") {
            ZEKT::Arguments arguments(frame, text);
            readMetrics(arguments);
        } else {
            return false;
        }
        return true;
    }

    void trace(std::string_view line) override {
        if (trace_) {
            trace_(line);
        }
    }

    std::shared_ptr<const FontDocument> finish() const {
        if (!hasMetrics_) {
            throw ZEKT::RunTimeException("Missing metrics instruction in font definition");
        }
        return font_;
    }

private:
    void readMetrics(ZEKT::Arguments& arguments) {
        if (hasMetrics_) {
            throw ZEKT::RunTimeException("Duplicate metrics instruction in font definition");
        }
        const FontMetrics metrics = {
            arguments.required("upm").number(), arguments.required("ascent").number(),
            arguments.required("descent").number(), arguments.required("linegap").number()};
        arguments.finish();
        if (!(metrics.unitsPerEm > 0.0) || metrics.ascent < 0.0 || metrics.descent > 0.0) {
            throw ZEKT::RunTimeException("Invalid metrics instruction in font definition");
        }
        font_->setMetrics(metrics);
        hasMetrics_ = true;
    }

    void readGlyph(ZEKT::Arguments& arguments) {
        if (!hasMetrics_) {
            throw ZEKT::RunTimeException("Missing metrics before glyph instruction in font definition");
        }
        const ZEKT::Argument& named = arguments.required(0);
        const std::u16string character = named.wideText();
        if (character.size() != 1) {
            throw ZEKT::RunTimeException("Invalid glyph character (length is not 1): " + named.text());
        }
        FontDocument::Glyph glyph;
        glyph.advance = arguments.required(1).number();
        const std::string pathData = arguments.required(2).text();
        arguments.finish();
        if (glyph.advance < 0.0) {
            throw ZEKT::RunTimeException("Negative glyph advance in font definition: " +
                                         numberText(glyph.advance));
        }
        try {
            glyph.outline = Drawing::parsePathData(pathData);
            outlinePoints_ += glyph.outline->points().size();
        } catch (const Drawing::PathDataError&) {
            glyph.outline.reset(); // shows when somebody writes with it
        }
        if (outlinePoints_ > kMostOutlinePoints) {
            throw ZEKT::RunTimeException("Too many outline points in font definition");
        }
        if (!font_->addGlyph(character.front(), std::move(glyph))) {
            throw ZEKT::RunTimeException("Duplicate glyph definition in font definition (unicode: " +
                                         codeText(character.front()) + ")");
        }
    }

    void readKerning(ZEKT::Arguments& arguments) {
        const double adjustment = arguments.required(0).number();
        std::vector<std::pair<std::u16string, std::u16string>> sets;
        for (std::size_t i = 1; i < arguments.indexedCount(); i += 2) {
            std::u16string left = arguments.required(i).wideText();
            sets.emplace_back(std::move(left), arguments.required(i + 1).wideText());
        }
        arguments.finish();
        for (const auto& [lefts, rights] : sets) {
            for (const char16_t left : lefts) {
                for (const char16_t right : rights) {
                    addKerning(left, right, adjustment);
                }
            }
        }
    }

    void addKerning(char16_t left, char16_t right, double adjustment) {
        if (font_->kerningCount() == kMostKerningPairs) {
            throw ZEKT::RunTimeException("Too many kerning pairs in font definition");
        }
        if (!font_->addKerning(left, right, adjustment)) {
            throw ZEKT::RunTimeException("Duplicate kerning pair in font definition: " + codeText(left) +
                                         "," + codeText(right));
        }
    }

    TraceLine trace_;
    std::shared_ptr<FontDocument> font_ = std::make_shared<FontDocument>();
    std::size_t outlinePoints_ = 0;
    bool hasMetrics_ = false;
};

} // namespace

std::shared_ptr<const FontDocument> readFont(std::string_view document, const TraceLine& trace) {
    FontReader reader(trace);
    ZEKT::Interpreter interpreter(reader);
    interpreter.run(document);
    return reader.finish();
}

std::shared_ptr<const FontDocument> readFont(ZEKT::Frame& frame, const ZEKT::Argument& body) {
    FontReader reader([&frame](std::string_view line) { frame.executor().trace(line); });
    ZEKT::Frame scope(frame, reader);
    scope.run(body);
    return reader.finish();
}

} // namespace OVS
