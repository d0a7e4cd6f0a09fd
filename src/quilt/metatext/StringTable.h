// Translations of texts. The string table resource has a line for each, with comments as in the notation:
//
//   "zoom:5/4" = "125%"   // what the zoom button shows
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace Quilt {

class StringTable {
public:
    StringTable() = default;

    // Throws Stackbrace::ParsingError for a text that is no table. Of equal sources the first counts.
    static StringTable read(std::string text, std::string sourceName = {});

    void set(std::string source, std::string translation);

    // nullptr when there is no translation.
    const std::string* find(std::string_view source) const;

    // The translation, or the text itself.
    std::string translate(std::string_view source) const;

    std::size_t size() const { return translations_.size(); }

private:
    std::map<std::string, std::string, std::less<>> translations_;
};

} // namespace Quilt
