// The options that say how the effect is set, which `render` and `analyze` share.
#pragma once

#include "model/Patch.h"
#include "tool/ParameterAssignment.h"

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace Tool {

// Applied in this order, whatever the order on the command line: the bank, the program that is chosen in it,
// the patch in that program's place, the parameters one after the other.
struct EffectOptions {
    std::string bank;
    std::string patch;
    int program = 0; // 1..16; 0: not given
    std::vector<std::string> parameters;

    // Throws for the first that is wrong.
    std::vector<ParameterAssignment> assignments() const;
};

void addEffectOptions(CLI::App& command, EffectOptions& options);

// The bank chunk of the file that `options` names, known to be sound.
std::string readBank(const std::string& file);

Model::AtomicPatch readPatchFile(const std::string& file);

// What the options come to, without a plug-in. Where no bank is given the factory bank is the start,
// as in a new plug-in.
Model::AtomicPatch settingsOf(const EffectOptions& options);

} // namespace Tool
