// The layouts that the command reads: a file, and what it names in turn: resources of the plug-in or of a
// folder, then files beside it.
#pragma once

#include "quilt/DocumentSource.h"
#include "resources/Lookup.h"

#include <string>
#include <utility>

namespace Tool {

class LayoutFiles : public Quilt::DocumentSource {
public:
    // A file, - for standard input, or the name of a resource.
    explicit LayoutFiles(std::string file, Resources::Lookup resources = Resources::Lookup())
        : file_(std::move(file)), resources_(std::move(resources)) {}

    // What the document is called: the file as it was given, nothing for standard input.
    const std::string& name() const { return file_; }

    std::string obtain(const std::string& name) const override;

private:
    std::string file_;
    Resources::Lookup resources_;
};

} // namespace Tool
