// What a script can fail with. Hosts throw the same classes from their own instructions; the interpreter
// fills in the statement, so a report shows the innermost one that failed.
#pragma once

#include <stdexcept>
#include <string>

namespace ZEKT {

// Thrown by value, caught by reference. what() is the message alone.
class Exception : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    // "ZEKT::SyntaxException" and so on, for reports.
    virtual const char* className() const noexcept { return "ZEKT::Exception"; }

    // The text of the statement that failed; empty where none is known.
    const std::string& statement() const noexcept { return statement_; }
    void setStatement(std::string statement) { statement_ = std::move(statement); }

private:
    std::string statement_;
};

// The text cannot be parsed.
class SyntaxException : public Exception {
public:
    using Exception::Exception;
    const char* className() const noexcept override { return "ZEKT::SyntaxException"; }
};

// The text parses but cannot be evaluated or executed.
class RunTimeException : public Exception {
public:
    using Exception::Exception;
    const char* className() const noexcept override { return "ZEKT::RunTimeException"; }
};

// The executor does not support the document's data format.
class FormatException : public Exception {
public:
    using Exception::Exception;
    const char* className() const noexcept override { return "ZEKT::FormatException"; }
};

// The run was stopped on purpose: by the document or by the executor's progress check.
class AbortedException : public Exception {
public:
    using Exception::Exception;
    const char* className() const noexcept override { return "ZEKT::AbortedException"; }
};

} // namespace ZEKT
