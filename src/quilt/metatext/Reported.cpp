#include "metatext/MetaText.h"

#include "tombola/Processor.h"

#include <exception>

namespace Quilt {

std::string expandMetaText(std::string_view text, const MetaTextSources& sources, const ErrorReport& report) {
    try {
        return expandMetaText(text, sources);
    } catch (const std::exception& error) {
        report("Error processing meta text", error.what());
        return {};
    }
}

std::string expandMacros(std::string_view text, Tombola::Processor& processor, const ErrorReport& report) {
    std::string expanded;
    try {
        processor.process({}, std::string(text), expanded);
    } catch (const std::exception& error) {
        report("Error processing Tombola macros in var expansion", error.what());
    }
    return expanded;
}

} // namespace Quilt
