// The macro processor that every layout goes through before it is read. It knows nothing of layouts: text is
// copied but for what begins with "@".
//
//   @define NAME = VALUE            a name for a text, expanded here and now
//   @redefine NAME = VALUE          another text for it, in the scope that has it
//   @begin NAME(A, B) ... @end      a macro with parameters; its body is expanded at each call
//   @NAME  @NAME(x, y)  @(NAME)     calls; @< ... @> around an argument keeps its commas and brackets
//   @if (A == B) ... @elif (A != B) ... @else ... @endif
//   @include NAME
//   @@                              a plain @
//
// A processor keeps what was defined at the top level: later texts see it.
#pragma once

#include "tombola/Exception.h"
#include "tombola/PositionMap.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Tombola {

// The text of an included name, or nullopt when there is none.
using IncludeLoader = std::function<std::optional<std::string>(const std::string& name)>;

// Takes the name for a path and reads the file.
std::optional<std::string> loadFile(const std::string& name);

class Scope;

class Processor {
public:
    // Scopes inside one another, the top level included.
    static constexpr unsigned kMostScopes = 20;

    // Includes inside one another. They open no scope, so a text that includes itself needs a bound of its
    // own.
    static constexpr unsigned kMostIncludes = 100;

    // Bytes that one text may grow to by expansion, values and arguments included, and bytes that may be
    // passed over on the way; beyond twice and 16 times its own size. They stop macros that double, or that
    // call one another without end.
    static constexpr std::size_t kMostProduced = std::size_t{256} << 20;
    static constexpr std::size_t kMostRead = std::size_t{1} << 30;

    explicit Processor(IncludeLoader loader = loadFile);
    ~Processor();
    Processor(Processor&&) noexcept;
    Processor& operator=(Processor&&) noexcept;

    // Appends the expansion of `text` to `output` and, if there is one, to the map of that output. Throws
    // Exception for any fault; output and map are then as they were.
    void process(std::string sourceName, std::string text, std::string& output,
                 PositionMap* positions = nullptr);

private:
    IncludeLoader loader_;
    std::unique_ptr<Scope> top_;
};

} // namespace Tombola
