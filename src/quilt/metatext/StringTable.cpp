#include "metatext/StringTable.h"

#include "notation/Compound.h"
#include "notation/Document.h"

#include <utility>

namespace Quilt {

StringTable StringTable::read(std::string text, std::string sourceName) {
    const Stackbrace::Document document(std::move(text), std::move(sourceName));
    StringTable table;
    for (const auto& [source, translation] : document.root().structure()) {
        table.set(std::string(source), translation.string());
    }
    return table;
}

void StringTable::set(std::string source, std::string translation) {
    translations_.insert_or_assign(std::move(source), std::move(translation));
}

const std::string* StringTable::find(std::string_view source) const {
    const auto found = translations_.find(source);
    return found == translations_.end() ? nullptr : &found->second;
}

std::string StringTable::translate(std::string_view source) const {
    const std::string* const translation = find(source);
    return translation == nullptr ? std::string(source) : *translation;
}

} // namespace Quilt
