// Where each byte of an expansion was written: in the text itself, in an included one, in a macro's body or
// in the argument or definition that a value came from. Error messages of whoever reads the expansion tell
// these places (Stackbrace::Document takes the map as it is).
#pragma once

#include "notation/Position.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Tombola {

// Shared by the expansion, by macros whose bodies are ranges of it, and by position maps.
struct Source {
    std::string name;
    std::string text;
};
using SourcePointer = std::shared_ptr<const Source>;

// A run of bytes of an expansion that stand in one source in the same order.
struct Stretch {
    std::size_t offset; // in the expansion, where the next stretch begins this one ends
    SourcePointer source;
    std::size_t sourceOffset;
    bool together =
        false; // all its bytes stand for the one at sourceOffset: where they were written is not known
};

class PositionMap final : public Stackbrace::PositionMap {
public:
    // The end of the expansion is where the reading of the outermost text ended.
    Stackbrace::Position locate(std::size_t offset) const override;

private:
    friend class Processor;

    std::vector<Stretch> stretches_; // by offset
};

} // namespace Tombola
