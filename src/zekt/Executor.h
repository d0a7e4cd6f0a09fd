// The host of a script. The interpreter knows variables, expansion, expressions and control instructions; all
// it has to ask of the world outside goes through here.
//
// An executor reads the arguments of its instructions like this (Arguments.h has the rest):
//
//   bool execute(Frame& frame, std::string_view name, const ArgumentText& text) override {
//       if (name == "rect") {
//           Arguments arguments(frame, text);            // expands every word, from the left
//           const auto sides = arguments.required(0).numbers(4, 4);
//           const auto rounded = arguments.optional("rounded");
//           if (rounded) { radii = rounded->numbers(1, 2); }
//           arguments.finish();                          // refuses what nobody fetched
//           ...
//           return true;
//       }
//       if (name == "context") {
//           Arguments arguments(frame, text);
//           const Argument& body = arguments.required(0);
//           arguments.finish();
//           Frame child(frame);                          // or Frame child(frame, otherExecutor)
//           child.run(body);                             // or frame.run(body) for a body without a scope
//           return true;
//       }
//       return false;                                    // not ours; nothing has been expanded
//   }
//
// Whatever goes wrong is thrown (Errors.h).
#pragma once

#include "zekt/Arguments.h"
#include "zekt/Errors.h"
#include "zekt/Frame.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ZEKT {

// A `format` statement. All names are in lower case, lists sorted and without duplicates; the interpreter's
// own version is no longer among the requirements.
struct FormatStatement {
    std::string name;
    std::vector<std::string> uses;
    std::vector<std::string> requirements;
};

class Executor {
public:
    virtual ~Executor() = default;

    // False: the document fails with "Unsupported data format".
    virtual bool supportsFormat(const FormatStatement& format) = 0;

    // Runs a domain instruction; `name` is in lower case. Returns whether the name is known.
    virtual bool execute(Frame& frame, std::string_view name, const ArgumentText& text) = 0;

    // Called once a statement with the statements that are left; false aborts the run. For the bodies that
    // another executor carries out, that one is asked.
    virtual bool progress(Frame& frame, std::uint32_t statementsLeft) {
        static_cast<void>(frame);
        static_cast<void>(statementsLeft);
        return true;
    }

    // A variable of the host's, for names that no frame has; nullopt if there is none. Asked once a run for
    // names that stand in the document, each time for computed ones. A document may hide it by one of its own.
    virtual std::optional<std::string> outerVariable(std::string_view name) {
        static_cast<void>(name);
        return std::nullopt;
    }

    // The text of an included file, nullopt if it cannot be read.
    virtual std::optional<std::string> loadInclude(const std::string& fileName) {
        static_cast<void>(fileName);
        return std::nullopt;
    }

    // One line from `trace` or `_debug`, without a line end.
    virtual void trace(std::string_view line) { static_cast<void>(line); }
};

} // namespace ZEKT
