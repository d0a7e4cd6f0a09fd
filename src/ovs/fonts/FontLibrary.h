// The fonts that the binary carries, and those of a folder, by name. A font is read when it is first asked
// for and shared from then on. For one thread at a time.
#pragma once

#include "fonts/FontDocument.h"
#include "resources/Lookup.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace OVS {

class FontLibrary final : public FontSource {
public:
    explicit FontLibrary(Resources::Lookup resources = Resources::Lookup())
        : resources_(std::move(resources)) {}

    // nullptr for a font that does not exist or cannot be read. "sans-serif" and "monospace" are names of
    // fonts that are always there.
    std::shared_ptr<const FontDocument> document(std::string_view name);

    std::shared_ptr<const Font> find(std::string_view name) override { return document(name); }
    std::shared_ptr<const Font> read(ZEKT::Frame& frame, const ZEKT::Argument& body) override;

private:
    Resources::Lookup resources_;
    std::map<std::string, std::shared_ptr<const FontDocument>, std::less<>> fonts_;
};

} // namespace OVS
