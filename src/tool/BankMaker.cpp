// The command's `bank` alone, for the build, which needs it before there is a whole command.
#include "tool/Commands.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    CLI::App program("Makes bank files.");
    Tool::addBankCommand(program);
    try {
        program.parse(argc, argv);
        return 0;
    } catch (const CLI::ParseError& error) {
        return program.exit(error);
    } catch (const std::exception& error) {
        std::cerr << "error: " << error.what() << '\n';
        return 1;
    }
}
