#include "tool/EffectOptions.h"

#include "model/MidiConfig.h"
#include "model/PatchText.h"
#include "model/Programs.h"
#include "parameters/ParameterText.h"
#include "resources/Resources.h"
#include "state/BankFile.h"
#include "state/Chunks.h"
#include "tool/TextFile.h"

#include <CLI/CLI.hpp>

namespace Tool {

namespace {

void installBank(const std::string& chunk, Model::Programs& programs) {
    Model::MidiConfig midiConfig;
    Bnk::readBankChunk(chunk, programs, midiConfig);
}

std::string factoryBank() {
    const auto file = Resources::find(Resources::Type::fxb, "factorybank");
    return std::string(Bnk::chunkOfBankFile(file.value()));
}

void assign(Model::Patch& patch, const ParameterAssignment& assignment) {
    const bool syncOn = Parameters::isOn(patch.value(Parameters::sync));
    const auto value = assignment.normalised
                           ? assignment.normalised
                           : Parameters::textToValue(assignment.id, assignment.text, syncOn);
    if (!value) {
        refuseValue(assignment);
    }
    patch.setValue(assignment.id, *value);
}

} // namespace

std::vector<ParameterAssignment> EffectOptions::assignments() const {
    std::vector<ParameterAssignment> result;
    for (const std::string& text : parameters) {
        result.push_back(readAssignment(text));
    }
    return result;
}

void addEffectOptions(CLI::App& command, EffectOptions& options) {
    command
        .add_option("--param", options.parameters,
                    "Sets a parameter: NAME=VALUE as people read it (pitch=-12 sm), or NAME:=0..1")
        ->allow_extra_args(false)
        ->type_name("NAME=VALUE");
    command.add_option("--patch", options.patch, "Loads a patch file")->type_name("FILE");
    command.add_option("--bank", options.bank, "Loads a bank file")->type_name("FILE.fxb");
    command.add_option("--program", options.program, "Chooses a program of the bank")
        ->check(CLI::Range(1, Model::Programs::kCount))
        ->type_name("1..16");
}

std::string readBank(const std::string& file) {
    std::string chunk(Bnk::chunkOfBankFile(readTextFile(file)));
    Model::Programs scratch;
    installBank(chunk, scratch);
    return chunk;
}

Model::AtomicPatch readPatchFile(const std::string& file) {
    return Model::readPatch(readTextFile(file), sourceName(file));
}

Model::AtomicPatch settingsOf(const EffectOptions& options) {
    Model::Programs programs;
    installBank(options.bank.empty() ? factoryBank() : readBank(options.bank), programs);
    if (options.program > 0) {
        programs.select(options.program - 1);
    }
    if (!options.patch.empty()) {
        programs.currentPatch() = readPatchFile(options.patch);
    }
    for (const ParameterAssignment& assignment : options.assignments()) {
        assign(programs.currentPatch(), assignment);
    }
    return programs.currentPatch();
}

} // namespace Tool
