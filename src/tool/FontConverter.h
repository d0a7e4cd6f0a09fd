// Makes a font document from an outline font file of any format that FreeType opens: the printable characters
// of ISO 8859-1 and the font's sign for characters it lacks, with the kerning that a text shaper would apply.
#pragma once

#include <string>

namespace Tool {

// What the document's comment says beside what the font itself tells of its name, version and rights.
struct FontOrigin {
    std::string source;  // where the file came from; may be empty
    std::string licence; // its name; may be empty
};

// Throws std::runtime_error that names the file, "-" being standard input.
std::string convertFont(const std::string& file, const FontOrigin& origin = {});

} // namespace Tool
