// Expands any text, and reads it as a string table.
#include "metatext/MetaText.h"
#include "metatext/StringTable.h"

#include "notation/Errors.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Quilt::MetaTextSources sources{[](const std::string& name) { return "\"" + name + "'\\"; },
                                         [](const std::string& source) { return source + "!"; }};
    try {
        const std::string expanded = Quilt::expandMetaText(text, sources);
        if (text.find('[') == std::string::npos && expanded != text) {
            std::abort();
        }
    } catch (const Quilt::MetaTextError& error) {
        if (*error.what() == '\0') {
            std::abort();
        }
    }
    try {
        Quilt::StringTable::read(text);
    } catch (const Stackbrace::Exception&) {
    }
    return 0;
}
