// The commands of `murmelon`, one source file each. A command adds its subcommand and options to the program;
// its callback does the work, prints results to standard output and throws what goes wrong (see Main.cpp).
#pragma once

#include <CLI/App.hpp>

namespace Tool {

void addAnalyzeCommand(CLI::App& program);
void addBankCommand(CLI::App& program);
void addBridgeCommand(CLI::App& program);
void addExprCommand(CLI::App& program);
void addEditorCommand(CLI::App& program);
void addFontCommand(CLI::App& program);
void addImageCommand(CLI::App& program);
void addImageScriptCommand(CLI::App& program);
void addMetaTextCommand(CLI::App& program);
void addMidiConfigCommand(CLI::App& program);
void addParamsCommand(CLI::App& program);
void addPatchCommand(CLI::App& program);
void addQuiltCommand(CLI::App& program);
void addRenderCommand(CLI::App& program);
void addStackbraceCommand(CLI::App& program);
void addTombolaCommand(CLI::App& program);
void addZektCommand(CLI::App& program);

} // namespace Tool
