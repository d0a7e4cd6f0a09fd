#include "tool/Commands.h"

#include "model/MidiConfig.h"
#include "model/MidiConfigText.h"
#include "model/PatchText.h"
#include "model/PathText.h"
#include "model/Product.h"
#include "model/Programs.h"
#include "notation/Writer.h"
#include "platform/AtomicFileWrite.h"
#include "state/BankFile.h"
#include "state/Chunks.h"
#include "tool/TextFile.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Tool {

namespace fs = std::filesystem;

namespace {

// The factory bank has been made by an early release, and still looks it: its file says that there are ten
// programs, whatever the chunk inside holds.
constexpr Bnk::BankHeader kFactoryChunk = {Bnk::kFirstBankMagic, 0x00010500};
constexpr Bnk::BankFileHeader kFactoryFile = {1, 10};

struct Options {
    std::vector<std::string> files;
    std::string exportFolder;
    std::string output;
    bool factory = false;
};

// A name that every file system takes: "03 AC_DC.kvmp".
fs::path fileNameFor(int slot, const std::string& programName) {
    constexpr std::size_t kLongest = 100;
    std::string name = fmt::format("{:02} {}", slot, programName.substr(0, kLongest));
    for (char& c : name) {
        if (static_cast<unsigned char>(c) < 0x20 ||
            std::string_view("/\\:*?\"<>|\x7F").find(c) != std::string::npos) {
            c = '_';
        }
    }
    name.erase(name.find_last_not_of(". ") + 1);
    return Model::pathFromUtf8(name.append(Model::kPatchExtension));
}

void listBank(const Options& options) {
    const std::string file = readTextFile(options.files.front());
    const std::string_view chunk = Bnk::chunkOfBankFile(file);
    Model::Programs programs;
    Model::MidiConfig midiConfig;
    Bnk::readBankChunk(chunk, programs, midiConfig);
    const auto count = std::min<std::uint32_t>(Bnk::BankContent(chunk).count(), Model::Programs::kCount);
    if (!options.exportFolder.empty()) {
        fs::create_directories(Model::pathFromUtf8(options.exportFolder));
    }
    for (int i = 0; i < static_cast<int>(count); ++i) {
        const std::string name = programs[i].name();
        if (!options.exportFolder.empty()) {
            Platform::atomicFileWrite(Model::pathFromUtf8(options.exportFolder) / fileNameFor(i + 1, name),
                                      Stackbrace::withFileLineEnds(Model::writePatch(programs[i])));
        }
        fmt::print("{}\t{}\n", i + 1, name);
    }
}

// It put a blank before every unit, the percent sign too.
std::string asInFactory(std::string patch) {
    constexpr std::string_view kValue = "\n\t\t"; // a parameter's line, which a name's is not
    for (auto line = patch.find(kValue); line != std::string::npos; line = patch.find(kValue, line + 1)) {
        const auto last = patch.find('\n', line + 1) - 2; // before the quote at the end
        if (patch[last] == '%') {
            patch.insert(last, " ");
        }
    }
    return patch;
}

void makeBank(const Options& options) {
    std::vector<std::string> patches;
    for (const std::string& file : options.files) {
        std::string patch = Model::writePatch(Model::readPatch(readTextFile(file), sourceName(file)));
        patches.push_back(options.factory ? asInFactory(std::move(patch)) : std::move(patch));
    }
    const auto chunkHeader = options.factory ? kFactoryChunk : Bnk::BankHeader();
    const auto fileHeader = options.factory
                                ? kFactoryFile
                                : Bnk::BankFileHeader{.programs = static_cast<std::uint32_t>(patches.size())};
    const std::string chunk = Bnk::packBankChunk(chunkHeader, patches, Model::writeMidiConfig({}));
    Platform::atomicFileWrite(Model::pathFromUtf8(options.output), Bnk::bankFileOf(chunk, fileHeader));
}

void checkUsage(const Options& options) {
    if (options.output.empty() && options.files.size() != 1) {
        throw CLI::ValidationError("bank", "takes one bank file, or --make with patch files");
    }
    if (options.files.size() > static_cast<std::size_t>(Model::Programs::kCount)) {
        throw CLI::ValidationError("bank",
                                   fmt::format("--make takes up to {} patch files", Model::Programs::kCount));
    }
}

} // namespace

void addBankCommand(CLI::App& program) {
    const auto options = std::make_shared<Options>();
    auto* const command = program.add_subcommand("bank", "Lists the programs of a bank file, or makes one");
    command->add_option("FILE", options->files, "The bank file, or with --make up to 16 patch files")
        ->required();
    auto* const folder = command->add_option("--export", options->exportFolder,
                                             "Writes a patch file for each program to this folder");
    auto* const output =
        command->add_option("--make", options->output, "Makes this bank file of the patch files");
    output->excludes(folder);
    command->add_flag("--factory", options->factory, "With --make: in the format of the factory bank")
        ->needs(output);
    command->callback([options] {
        checkUsage(*options);
        options->output.empty() ? listBank(*options) : makeBank(*options);
    });
}

} // namespace Tool
