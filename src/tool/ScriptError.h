// How the command reports a script that failed: class and message, then the statement on a line of its own.
#pragma once

#include "zekt/Errors.h"

#include <stdexcept>
#include <string>

namespace Tool {

[[noreturn]] inline void reportScriptError(const ZEKT::Exception& error) {
    std::string report = std::string(error.className()).append(": ").append(error.what());
    if (!error.statement().empty()) {
        report.append("\nin: ").append(error.statement());
    }
    throw std::runtime_error(report);
}

} // namespace Tool
