// What the command says of a failure.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tool {

// Names and values in messages may have line ends of their own.
inline std::string oneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

// A script's failure: the statement is told on a line of its own.
class ScriptFailure : public std::runtime_error {
public:
    ScriptFailure(const std::string& message, std::string statement)
        : std::runtime_error(message), statement_(std::move(statement)) {}
    const std::string& statement() const { return statement_; }

private:
    std::string statement_; // empty: not known
};

} // namespace Tool
