// Entry of the `murmelon` command. Exit 0: done. 1: it failed, and standard error says why in one line
// "error: MESSAGE". 2: wrong usage.
#include "tool/Commands.h"
#include "tool/ErrorLine.h"

#include "platform/ThisProgram.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

int run(int argc, char** argv) {
    CLI::App program("Plays host to the Murmelon plug-in, and reads and writes all that goes with it.",
                     "murmelon");
    program.set_version_flag("--version", "murmelon " MURMELON_VERSION);
    program.require_subcommand(1);
    program.allow_windows_style_options(false); // a path may begin with a slash on any system

    Tool::addRenderCommand(program);
    Tool::addAnalyzeCommand(program);
    Tool::addParamsCommand(program);
    Tool::addPatchCommand(program);
    Tool::addBankCommand(program);
    Tool::addMidiConfigCommand(program);
    Tool::addStackbraceCommand(program);
    Tool::addQuiltCommand(program);
    Tool::addTombolaCommand(program);
    Tool::addExprCommand(program);
    Tool::addMetaTextCommand(program);
    Tool::addZektCommand(program);
    Tool::addFontCommand(program);
    Tool::addImageCommand(program);
    Tool::addBridgeCommand(program);
    Tool::addEditorCommand(program);
    Tool::addImageScriptCommand(program);

    try {
        auto arguments = Platform::argumentsOfThisProgram(argc, argv);
        std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the end
        program.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : kWrongUsage;
    }
    return 0;
}

// A result that has not arrived is a failure: the disk may be full.
void finishOutput() {
    const int failure = std::fflush(stdout) == 0 ? 0 : errno; // std::cout forgets the reason
    std::cout.flush();
    if (failure != 0 || !std::cout || std::ferror(stdout) != 0) {
        const std::string reason = failure != 0 ? std::string(": ") + std::strerror(failure) : "";
        throw std::runtime_error("Could not write to standard output" + reason);
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        Platform::keepStandardStreamsUnchanged();
        const int status = run(argc, argv);
        finishOutput();
        return status;
    } catch (const Tool::ScriptFailure& error) {
        std::cout.flush();
        std::cerr << "error: " << Tool::oneLine(error.what()) << '\n';
        if (!error.statement().empty()) {
            std::cerr << "in: " << Tool::oneLine(error.statement()) << '\n';
        }
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "error: " << Tool::oneLine(error.what()) << '\n';
    } catch (...) {
        std::cerr << "error: Unexpected error\n";
    }
    return kFailed;
}
