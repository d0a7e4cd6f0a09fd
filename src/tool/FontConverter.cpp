#include "tool/FontConverter.h"

#include "tool/TextFile.h"

#include <fmt/core.h>
#include <ft2build.h>
#include <hb-ft.h>
#include <hb.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_SFNT_NAMES_H
#include FT_TRUETYPE_IDS_H

namespace Tool {

namespace {

template <auto release>
struct Releasing {
    template <class Handle>
    void operator()(Handle* handle) const {
        release(handle);
    }
};

using LibraryPtr = std::unique_ptr<FT_LibraryRec_, Releasing<FT_Done_FreeType>>;
using FacePtr = std::unique_ptr<FT_FaceRec_, Releasing<FT_Done_Face>>;
using ShapingFacePtr = std::unique_ptr<hb_face_t, Releasing<hb_face_destroy>>;
using ShapingFontPtr = std::unique_ptr<hb_font_t, Releasing<hb_font_destroy>>;
using BufferPtr = std::unique_ptr<hb_buffer_t, Releasing<hb_buffer_destroy>>;

// A number of half font units.
std::string halvesText(long halves) {
    std::string text = halves < 0 ? "-" : "";
    const long magnitude = std::abs(halves);
    if (magnitude > 1 || magnitude == 0) {
        text += std::to_string(magnitude / 2);
    }
    return magnitude % 2 != 0 ? text + ".5" : text;
}

// Writes an outline as compact path data. Coordinates come in half units, y up: so the points halfway between
// two control points, which TrueType leaves out, are whole, and `t` can leave out the control point again.
class PathWriter {
public:
    void moveTo(FT_Vector to) {
        closeOpen();
        command('m', {offset(to)});
        open_ = true;
        start_ = to;
        arrive(to, to);
    }

    void lineTo(FT_Vector to) {
        const FT_Vector by = offset(to);
        if (by.y == 0) {
            command('h', {}, by.x);
        } else if (by.x == 0) {
            command('v', {}, by.y);
        } else {
            command('l', {by});
        }
        arrive(to, to);
    }

    void quadTo(FT_Vector control, FT_Vector to) {
        const bool reflected =
            lastWasQuad_ && control.x == 2 * at_.x - control_.x && control.y == 2 * at_.y - control_.y;
        if (reflected) {
            command('t', {offset(to)});
        } else {
            command('q', {offset(control), offset(to)});
        }
        arrive(to, control);
        lastWasQuad_ = true;
    }

    void cubicTo(FT_Vector control1, FT_Vector control2, FT_Vector to) {
        command('c', {offset(control1), offset(control2), offset(to)});
        arrive(to, control2);
    }

    std::string finish() {
        closeOpen();
        return std::move(text_);
    }

private:
    FT_Vector offset(FT_Vector to) const { return {to.x - at_.x, at_.y - to.y}; }

    void arrive(FT_Vector to, FT_Vector control) {
        at_ = to;
        control_ = control;
        lastWasQuad_ = false;
    }

    void number(long halves) {
        const std::string digits = halvesText(halves);
        if (!text_.empty() && digits.front() != '-' &&
            (text_.back() == '.' || (text_.back() >= '0' && text_.back() <= '9'))) {
            text_ += ',';
        }
        text_ += digits;
    }

    void letter(char name) {
        if (name != last_ || name == 'm') { // coordinates after those of a move would be lines
            text_ += name;
        }
        last_ = name;
    }

    void command(char name, std::initializer_list<FT_Vector> points, std::optional<long> single = {}) {
        letter(name);
        for (const FT_Vector& point : points) {
            number(point.x);
            number(point.y);
        }
        if (single) {
            number(*single);
        }
    }

    void closeOpen() {
        if (open_) {
            letter('z');
            at_ = start_;
            open_ = false;
        }
    }

    std::string text_;
    FT_Vector at_ = {0, 0};
    FT_Vector start_ = {0, 0};
    FT_Vector control_ = {0, 0};
    char last_ = 0;
    bool lastWasQuad_ = false;
    bool open_ = false;
};

std::string pathDataOf(FT_Outline& outline) {
    PathWriter writer;
    static constexpr auto toWriter = [](void* user) { return static_cast<PathWriter*>(user); };
    FT_Outline_Funcs functions = {};
    functions.move_to = [](const FT_Vector* to, void* user) { return toWriter(user)->moveTo(*to), 0; };
    functions.line_to = [](const FT_Vector* to, void* user) { return toWriter(user)->lineTo(*to), 0; };
    functions.conic_to = [](const FT_Vector* control, const FT_Vector* to, void* user) {
        return toWriter(user)->quadTo(*control, *to), 0;
    };
    functions.cubic_to = [](const FT_Vector* control1, const FT_Vector* control2, const FT_Vector* to,
                            void* user) { return toWriter(user)->cubicTo(*control1, *control2, *to), 0; };
    functions.shift = 1; // half units
    if (FT_Outline_Decompose(&outline, &functions, &writer) != 0) {
        throw std::runtime_error("Could not read an outline");
    }
    return writer.finish();
}

std::string escaped(unsigned code) {
    if (code < 0x20 || code > 0x7E || code == ':') { // a bare colon would make the word a label
        return fmt::format("\\x{:02X}", code);
    }
    const char c = static_cast<char>(code);
    constexpr std::string_view kNeedBackslash = " \"\\$/;=[]{}";
    return kNeedBackslash.find(c) != std::string_view::npos ? std::string{'\\', c} : std::string{c};
}

// The characters of a converted font, code 0 standing for every other.
std::vector<unsigned> isoCharacters() {
    std::vector<unsigned> codes = {0};
    for (unsigned code = 0x20; code <= 0xFF; ++code) {
        if (code <= 0x7E || code >= 0xA0) {
            codes.push_back(code);
        }
    }
    return codes;
}

// The glyph of a character, or none. Subset fonts leave out the two characters that look like another.
std::optional<FT_UInt> glyphIndexOf(FT_Face face, unsigned code) {
    if (code == 0) {
        return 0;
    }
    constexpr std::array<std::pair<unsigned, unsigned>, 2> kStandIns = {{{0xA0, ' '}, {0xAD, '-'}}};
    FT_UInt index = FT_Get_Char_Index(face, code);
    for (const auto& [missing, standIn] : kStandIns) {
        if (index == 0 && code == missing) {
            index = FT_Get_Char_Index(face, standIn);
        }
    }
    return index != 0 ? std::optional(index) : std::nullopt;
}

// ASCII in place of a character of a name record.
std::string_view plainCharacter(unsigned code) {
    static constexpr std::array<std::pair<unsigned, std::string_view>, 6> kLookAlikes = {
        {{0xA9, "(c)"}, {0x2013, "-"}, {0x2018, "'"}, {0x2019, "'"}, {0x201C, "\""}, {0x201D, "\""}}};
    for (const auto& [character, plain] : kLookAlikes) {
        if (code == character) {
            return plain;
        }
    }
    return code < 0x20 ? " " : "?";
}

// The records of a font's Windows part are UTF-16. Line ends would end the comment.
std::string nameRecord(FT_Face face, int id) {
    for (FT_UInt i = 0; i < FT_Get_Sfnt_Name_Count(face); ++i) {
        FT_SfntName name;
        if (FT_Get_Sfnt_Name(face, i, &name) != 0 || name.name_id != id ||
            name.platform_id != TT_PLATFORM_MICROSOFT) {
            continue;
        }
        std::string text;
        for (FT_UInt at = 0; at + 1 < name.string_len; at += 2) {
            const auto code = static_cast<unsigned>(name.string[at] << 8 | name.string[at + 1]);
            if (code >= 0x20 && code <= 0x7E) {
                text += static_cast<char>(code);
            } else {
                text += plainCharacter(code);
            }
        }
        return text;
    }
    return {};
}

std::string commentOf(FT_Face face, const FontOrigin& origin) {
    std::string name = nameRecord(face, TT_NAME_ID_FULL_NAME);
    if (name.empty()) {
        name = fmt::format("{} {}", face->family_name != nullptr ? face->family_name : "",
                           face->style_name != nullptr ? face->style_name : "");
    }
    std::string comment = fmt::format("// {}, ISO charset only, converted from {}.\n", name,
                                      origin.source.empty() ? "an outline font" : origin.source);
    for (const int id : {TT_NAME_ID_VERSION_STRING, TT_NAME_ID_COPYRIGHT, TT_NAME_ID_LICENSE}) {
        if (const std::string text = nameRecord(face, id); !text.empty()) {
            comment += fmt::format("// {}\n", text);
        }
    }
    const std::string link = nameRecord(face, TT_NAME_ID_LICENSE_URL);
    if (!origin.licence.empty() || !link.empty()) {
        comment += fmt::format("// Licence: {}{}{}\n", origin.licence,
                               origin.licence.empty() || link.empty() ? "" : ", ", link);
    }
    return comment;
}

// A hollow box as wide as its advance lets, for fonts whose own sign for missing characters shows nothing.
std::string missingSign(long advance, long unitsPerEm) {
    const long side = unitsPerEm / 20;
    const long width = std::max(advance - 2 * side, 2 * side);
    const long height = unitsPerEm * 7 / 10;
    const long line = std::min({unitsPerEm / 20, width / 2, height / 2});
    return fmt::format("m{},0v-{}h{}v{}zm{}-{}h{}v-{}h-{}z", side, height, width, height, line, line,
                       width - 2 * line, height - 2 * line, width - 2 * line);
}

// What a shaper adds to the advance of the first of two characters for the sake of the second: whatever table
// of the font it comes from.
class PairKerning {
public:
    explicit PairKerning(FT_Face face)
        : face_(hb_ft_face_create(face, nullptr)), font_(hb_font_create(face_.get())),
          buffer_(hb_buffer_create()) {}

    long operator()(unsigned left, unsigned right) {
        return static_cast<long>(width(left, right, 1)) - width(left, right, 0);
    }

private:
    hb_position_t width(unsigned left, unsigned right, std::uint32_t kerning) {
        hb_buffer_clear_contents(buffer_.get());
        const std::array<std::uint32_t, 2> text = {left, right};
        hb_buffer_add_codepoints(buffer_.get(), text.data(), 2, 0, 2);
        hb_buffer_set_direction(buffer_.get(), HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer_.get(), HB_SCRIPT_LATIN);
        const auto feature = [](const char* name, std::uint32_t value) {
            return hb_feature_t{hb_tag_from_string(name, -1), value, HB_FEATURE_GLOBAL_START,
                                HB_FEATURE_GLOBAL_END};
        };
        const std::array features = {feature("kern", kerning), feature("liga", 0), feature("clig", 0),
                                     feature("calt", 0)};
        hb_shape(font_.get(), buffer_.get(), features.data(), static_cast<unsigned>(features.size()));
        unsigned count = 0;
        const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer_.get(), &count);
        hb_position_t sum = 0;
        for (unsigned i = 0; i < count; ++i) {
            sum += positions[i].x_advance;
        }
        return sum;
    }

    ShapingFacePtr face_;
    ShapingFontPtr font_; // in font units unless told otherwise
    BufferPtr buffer_;
};

// One statement an amount: characters with the same partners at it share a set.
std::string kerningStatements(FT_Face face, const std::vector<unsigned>& codes) {
    PairKerning kerning(face);
    std::map<long, std::map<unsigned, std::string>> partners; // amount, left: rights
    for (const unsigned left : codes) {
        for (const unsigned right : codes) {
            if (const long amount = left != 0 && right != 0 ? kerning(left, right) : 0; amount != 0) {
                partners[amount][left] += escaped(right);
            }
        }
    }
    std::string text;
    for (const auto& [amount, rightsOfLeft] : partners) {
        std::map<std::string, std::string> leftsOfRights;
        for (const auto& [left, rights] : rightsOfLeft) {
            leftsOfRights[rights] += escaped(left);
        }
        text += fmt::format("kern {}", amount);
        for (const auto& [rights, lefts] : leftsOfRights) {
            text += fmt::format(" {} {}", lefts, rights);
        }
        text += '\n';
    }
    return text;
}

} // namespace

std::string convertFont(const std::string& file, const FontOrigin& origin) {
    const std::string content = readTextFile(file);
    FT_Library opened = nullptr;
    if (FT_Init_FreeType(&opened) != 0) {
        throw std::runtime_error("Could not start the font library");
    }
    const LibraryPtr library(opened);
    FT_Face openedFace = nullptr;
    if (FT_New_Memory_Face(library.get(), reinterpret_cast<const FT_Byte*>(content.data()),
                           static_cast<FT_Long>(content.size()), 0, &openedFace) != 0) {
        throw std::runtime_error(fmt::format("Could not read the font {}", file));
    }
    const FacePtr face(openedFace);
    if (!FT_IS_SCALABLE(face.get())) {
        throw std::runtime_error(fmt::format("{} is not an outline font", file));
    }

    std::string text = commentOf(face.get(), origin);
    text += "format ovsfont-1 requires:ZEKT-1\n\n";
    const int ascent = std::max<int>(face->ascender, 0);
    const int descent = std::min<int>(face->descender, 0);
    text += fmt::format("metrics upm:{} ascent:{} descent:{} linegap:{}\n\n", face->units_per_EM, ascent,
                        descent, std::max(face->height - (ascent - descent), 0));
    std::vector<unsigned> codes;
    for (const unsigned code : isoCharacters()) {
        const auto index = glyphIndexOf(face.get(), code);
        if (!index) {
            continue;
        }
        if (FT_Load_Glyph(face.get(), *index, FT_LOAD_NO_SCALE) != 0 ||
            face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
            throw std::runtime_error(fmt::format("Could not read glyph {} of the font {}", *index, file));
        }
        codes.push_back(code);
        const long advance = face->glyph->advance.x;
        std::string outline = pathDataOf(face->glyph->outline);
        if (outline.empty() && code == 0) {
            outline = missingSign(advance, face->units_per_EM);
        }
        text += fmt::format("glyph {} {} \"{}\"\n", escaped(code), advance, outline);
    }
    const std::string kerning = kerningStatements(face.get(), codes);
    return kerning.empty() ? text : text + '\n' + kerning;
}

} // namespace Tool
