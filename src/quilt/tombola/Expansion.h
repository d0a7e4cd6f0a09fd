// One text on its way through the processor: carries out directives and calls, and counts what that costs.
#pragma once

#include "tombola/Processor.h"
#include "tombola/Reader.h"
#include "tombola/Scope.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tombola {

// Where expanded text goes; stretches only when positions are wanted.
struct Output {
    std::string& text;
    std::vector<Stretch>* stretches;
};

class Expansion {
public:
    Expansion(const IncludeLoader& loader, std::size_t sourceSize, bool positions);

    // Reads `in` to its end. Fails at its beginning when no depth is left for the scope.
    void expand(Reader& in, Scope& scope, Output out);

private:
    // A range being read in a scope, into an output.
    struct Frame {
        Reader& in;
        Scope& scope;
        Output out;
    };

    void directive(Frame& frame, std::string_view word);
    void define(Frame& frame);
    void redefine(Frame& frame);
    void beginMacro(Frame& frame);
    void conditional(Frame& frame);
    bool condition(Frame& frame);
    void include(Frame& frame);
    void call(Frame& frame, std::string_view word);
    void callMacro(Frame& frame, const BlockMacro& macro, std::size_t firstArgument);

    std::string_view definedName(Frame& frame);
    void definedText(Frame& frame, Value& value);
    void parameters(Reader& in, BlockMacro& macro);
    void arguments(Frame& frame);
    void argument(Frame& frame, char stop, char otherStop, Value& value);

    void run(Frame& frame);
    void copy(Frame& frame, const char* begin, const char* end);
    void insert(Frame& frame, const Value& value);
    void countRead(const Reader& in, std::size_t bytes);
    void countProduced(const Reader& in, std::size_t bytes);

    const IncludeLoader& loader_;
    const bool positions_;
    std::size_t readLeft_;
    std::size_t producedLeft_;
    unsigned includes_ = 0; // inside one another
    ValueStack values_;
};

} // namespace Tombola
