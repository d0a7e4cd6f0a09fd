// Runs documents of the script language for a host (Executor.h). An interpreter keeps the parsed form of what
// it has run, so one that is kept for the next run of the same document does not read it again.
//
//   Interpreter interpreter(executor);
//   interpreter.globals().set("feedbacks.sampleRate", 44100.0);
//   interpreter.run(document);                     // throws Exception (Errors.h)
//
// For one thread at a time. What a document can take is bounded: the limits below end it with a
// RunTimeException.
#pragma once

#include "zekt/Errors.h"
#include "zekt/Executor.h"
#include "zekt/Frame.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace ZEKT {

inline constexpr std::uint32_t kStatementLimit = 1'000'000; // "Statements limit reached"
inline constexpr std::uint32_t kNestingLimit = 50;          // "Recursion limit reached"

// "Text limit reached": a text that doubles with each statement would fill any memory, and outlast any
// patience, long before the statements run out.
inline constexpr std::size_t kLongestText = 8U << 20;
inline constexpr std::size_t kMostVariableText = 64U << 20; // of all variables together
inline constexpr std::size_t kLongestBody = 256U << 10;      // run from a variable rather than as it stands
inline constexpr std::size_t kMostElements = 1'000'000;     // of a list
inline constexpr std::size_t kMostWords = 100'000;          // of an instruction's arguments
inline constexpr std::size_t kMostWork =
    256U << 20; // characters written or compared, steps of expressions, in a run

class Interpreter {
public:
    explicit Interpreter(Executor& executor);
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    // Its variables are the document's; they stay after a run, failed or not.
    Frame& globals();
    void forgetVariables();

    // A run with full budgets. Not to be called from within a run.
    void run(std::string_view document);

    std::uint32_t statementsLeft() const;

private:
    std::unique_ptr<Machine> machine_;
};

} // namespace ZEKT
