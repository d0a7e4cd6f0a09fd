// How the command reports a script that failed: class and message, and the statement.
#pragma once

#include "tool/ErrorLine.h"
#include "zekt/Errors.h"

#include <string>

namespace Tool {

[[noreturn]] inline void reportScriptError(const ZEKT::Exception& error) {
    throw ScriptFailure(std::string(error.className()).append(": ").append(error.what()), error.statement());
}

} // namespace Tool
