// Runs scripts with a host that writes down what it is asked.
#pragma once

#include "zekt/Interpreter.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace ScriptRun {

// Knows data format "test-1" (no requirements), `show ARGUMENTS...`, which prints each argument as its
// readers give it, `list LIST` of two or three elements, and `scope BODY`, which runs a body in a frame of
// its own.
class Host : public ZEKT::Executor {
public:
    std::string output;
    std::map<std::string, std::string> files;
    std::uint32_t abortAt = 0; // statements left

    bool supportsFormat(const ZEKT::FormatStatement& format) override {
        output.append("format ").append(format.name);
        for (const auto& use : format.uses) {
            output.append(" uses ").append(use);
        }
        for (const auto& requirement : format.requirements) {
            output.append(" requires ").append(requirement);
        }
        output += "\n";
        return format.name == "test-1" && format.requirements.empty();
    }

    bool execute(ZEKT::Frame& frame, std::string_view name, const ZEKT::ArgumentText& text) override {
        if (name == "show") {
            ZEKT::Arguments arguments(frame, text);
            for (const auto* argument : arguments.rest(0)) {
                output.append("<").append(argument->text()).append(">");
            }
            for (const auto& [label, argument] : arguments.labelled()) {
                output.append(label).append("<").append(argument->text()).append(">");
            }
            output += "\n";
            return true;
        }
        if (name == "list") {
            ZEKT::Arguments arguments(frame, text);
            const auto elements = arguments.required(0).list({2, 3});
            arguments.finish();
            for (const auto& element : elements) {
                output.append("<").append(element).append(">");
            }
            output += "\n";
            return true;
        }
        if (name == "scope") {
            ZEKT::Arguments arguments(frame, text);
            ZEKT::Frame child(frame);
            child.run(arguments.required(0));
            return true;
        }
        return false;
    }

    bool progress(ZEKT::Frame&, std::uint32_t statementsLeft) override { return statementsLeft != abortAt; }

    std::optional<std::string> loadInclude(const std::string& fileName) override {
        const auto found = files.find(fileName);
        return found == files.end() ? std::nullopt : std::optional(found->second);
    }

    void trace(std::string_view line) override { output.append(line).append("\n"); }
};

// What the script wrote, and behind it how it failed: "CLASS: MESSAGE [STATEMENT]".
inline std::string run(std::string_view script, Host& host) {
    ZEKT::Interpreter interpreter(host);
    try {
        interpreter.run(script);
    } catch (const ZEKT::Exception& error) {
        const std::string_view className = error.className();
        host.output.append(className.substr(6)).append(": ").append(error.what());
        host.output.append(" [").append(error.statement()).append("]");
    }
    return host.output;
}

inline std::string run(std::string_view script) {
    Host host;
    return run(script, host);
}

struct Row {
    std::string script;
    std::string result;
};

template <typename Rows>
void expectResults(const Rows& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(run(row.script), row.result) << row.script;
    }
}

} // namespace ScriptRun
