#include "fonts/FontLibrary.h"

#include "fonts/FontReading.h"
#include "zekt/Errors.h"

#include <array>
#include <utility>

namespace OVS {

namespace {

std::string_view resourceName(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 2> kGenericNames = {
        {{"sans-serif", "SourceSansPro"}, {"monospace", "SourceCodePro"}}};
    for (const auto& [generic, actual] : kGenericNames) {
        if (name == generic) {
            return actual;
        }
    }
    return name;
}

} // namespace

std::shared_ptr<const FontDocument> FontLibrary::document(std::string_view name) {
    name = resourceName(name);
    if (const auto known = fonts_.find(name); known != fonts_.end()) {
        return known->second;
    }
    std::shared_ptr<const FontDocument> font;
    if (const auto text = resources_.find(Resources::Type::ovsfont, name)) {
        try {
            font = readFont(*text);
        } catch (const ZEKT::Exception&) {
            font = nullptr; // whoever asked says that it is missing
        }
    }
    fonts_.emplace(name, font);
    return font;
}

std::shared_ptr<const Font> FontLibrary::read(ZEKT::Frame& frame, const ZEKT::Argument& body) {
    return readFont(frame, body);
}

} // namespace OVS
