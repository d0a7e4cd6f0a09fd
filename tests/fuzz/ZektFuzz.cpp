// Any script ends, in bounded time, with an error of this language or none; and a second run of the kept
// parsed forms does what the first did.
#include "zekt/Interpreter.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

class Host : public ZEKT::Executor {
public:
    std::string output;

    bool supportsFormat(const ZEKT::FormatStatement& format) override { return format.requirements.empty(); }

    // `show` makes every kind of value of its first argument, `body` runs it.
    bool execute(ZEKT::Frame& frame, std::string_view name, const ZEKT::ArgumentText& text) override {
        if (name == "body") {
            ZEKT::Arguments arguments(frame, text);
            ZEKT::Frame child(frame);
            child.run(arguments.required(0));
            return true;
        }
        if (name != "show") {
            return false;
        }
        ZEKT::Arguments arguments(frame, text);
        const ZEKT::Argument& argument = arguments.required(0);
        output += argument.text() + std::to_string(argument.wideText().size());
        for (const std::string& element : argument.list()) {
            output += element;
        }
        output += std::to_string(argument.arguments().indexedCount());
        arguments.finish();
        return true;
    }

    // Long runs find nothing that short ones do not.
    bool progress(ZEKT::Frame&, std::uint32_t statementsLeft) override {
        return statementsLeft + 500 > ZEKT::kStatementLimit;
    }

    std::optional<std::string> loadInclude(const std::string& fileName) override { return fileName; }

    void trace(std::string_view line) override { output += line; }
};

std::string outcome(ZEKT::Interpreter& interpreter, Host& host, const std::string& script) {
    host.output.clear();
    interpreter.forgetVariables();
    try {
        interpreter.run(script);
    } catch (const ZEKT::Exception& error) {
        host.output += error.what() + error.statement();
    }
    return host.output + std::to_string(interpreter.statementsLeft());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string script(reinterpret_cast<const char*>(data), size);
    Host host;
    ZEKT::Interpreter interpreter(host);
    if (outcome(interpreter, host, script) != outcome(interpreter, host, script)) {
        std::abort();
    }
    return 0;
}
