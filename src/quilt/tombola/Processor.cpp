#include "tombola/Processor.h"

#include "tombola/Expansion.h"

#include "platform/FileRead.h"
#include "platform/PathText.h"
#include "platform/LargePages.h"

#include <stdexcept>
#include <utility>

namespace Tombola {

std::optional<std::string> loadFile(const std::string& name) {
    try {
        return Platform::readFile(Platform::pathFromUtf8(name));
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

Processor::Processor(IncludeLoader loader)
    : loader_(std::move(loader)), top_(std::make_unique<Scope>(nullptr, kMostScopes)) {}

Processor::~Processor() = default;
Processor::Processor(Processor&&) noexcept = default;
Processor& Processor::operator=(Processor&&) noexcept = default;

void Processor::process(std::string sourceName, std::string text, std::string& output,
                        PositionMap* positions) {
    const SourcePointer source =
        std::make_shared<const Source>(Source{std::move(sourceName), std::move(text)});
    std::vector<Stretch>* const stretches = positions == nullptr ? nullptr : &positions->stretches_;
    const std::size_t outputBefore = output.size();
    const std::size_t stretchesBefore = stretches == nullptr ? 0 : stretches->size();
    try {
        if (output.empty()) {
            output.reserve(source->text.size());
            Platform::preferLargePages(output.data(), output.capacity());
        }
        Reader in(source, source->text);
        Expansion(loader_, source->text.size(), positions != nullptr).expand(in, *top_, {output, stretches});
        if (stretches != nullptr) {
            stretches->push_back({output.size(), source, source->text.size()});
        }
    } catch (...) {
        output.resize(outputBefore);
        if (stretches != nullptr) {
            stretches->resize(stretchesBefore);
        }
        throw;
    }
}

} // namespace Tombola
