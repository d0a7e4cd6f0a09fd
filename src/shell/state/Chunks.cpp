#include "state/Chunks.h"

#include "state/Compression.h"
#include "state/Errors.h"

#include "model/MidiConfig.h"
#include "model/MidiConfigText.h"
#include "model/PatchText.h"
#include "model/Programs.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

namespace Bnk {

namespace {

constexpr std::uint32_t kProgramMagic = 0x8293048A;

// Layouts of the first releases, which no longer can be read.
constexpr std::uint32_t kLegacyBankMagic = 0x71236B56;
constexpr std::uint32_t kFirstLegacyProgramMagic = 0x19B30192;
constexpr std::uint32_t kSecondLegacyProgramMagic = 0x19B30193;

// Behind the programs stands state of the host's for plug-ins that carry some; this one carries none, and
// leaves the room for it empty.
constexpr std::size_t kHostStateSize = 28;

using Magics = std::initializer_list<std::uint32_t>;

bool isOneOf(std::uint32_t magic, Magics magics) {
    return std::ranges::find(magics, magic) != magics.end();
}

struct Chunk {
    std::uint32_t magic;
    std::string content;
};

Chunk unpack(std::string_view chunk, Magics legacy, Magics current) {
    ByteReader header(chunk);
    const std::uint32_t magic = header.littleEndian();
    if (isOneOf(magic, legacy)) {
        throw FormatException("Invalid data format (unsupported version)");
    }
    if (!isOneOf(magic, current)) {
        throw FormatException("Invalid data format (unsupported version?)");
    }
    header.littleEndian();
    if (header.littleEndian() != kPluginId) {
        throw FormatException("Invalid data format (invalid four char id)");
    }
    header.littleEndian();
    const std::uint32_t length = header.littleEndian();
    return {magic, inflated(header.rest(), length)};
}

std::string pack(const BankHeader& header, std::string_view content) {
    std::string chunk;
    appendLittleEndian(chunk, header.magic);
    appendLittleEndian(chunk, 0);
    appendLittleEndian(chunk, kPluginId);
    appendLittleEndian(chunk, header.writerVersion);
    appendLittleEndian(chunk, static_cast<std::uint32_t>(content.size()));
    return chunk += deflated(content);
}

// Whatever follows what is known is no error: only a whole text counts.
std::string_view variablesBehind(ByteReader content) {
    try {
        return content.rest().empty() ? std::string_view() : content.string();
    } catch (const StreamException&) {
        return {};
    }
}

} // namespace

BankContent::BankContent(std::string_view chunk) : content_({}) {
    Chunk unpacked = unpack(chunk, {kLegacyBankMagic}, {kFirstBankMagic, kSecondBankMagic, kNewestBankMagic});
    magic_ = unpacked.magic;
    inflated_ = std::move(unpacked.content);
    content_ = ByteReader(inflated_);
    count_ = content_.littleEndian();
}

std::optional<std::string_view> BankContent::midiConfig() {
    content_.bytes(kHostStateSize);
    return magic_ == kNewestBankMagic ? std::optional(content_.string()) : std::nullopt;
}

std::string_view BankContent::variables() {
    return magic_ == kNewestBankMagic ? variablesBehind(content_) : std::string_view();
}

std::string readBankChunk(std::string_view chunk, Model::Programs& programs, Model::MidiConfig& midiConfig) {
    BankContent content(chunk);
    for (std::uint32_t i = 0; i < content.count(); ++i) {
        const std::string_view text = content.nextPatch();
        if (i < static_cast<std::uint32_t>(Model::Programs::kCount)) {
            programs[static_cast<int>(i)] = Model::readPatch(std::string(text));
        }
    }
    Model::MidiConfig read;
    if (const auto text = content.midiConfig()) {
        if (!Model::readMidiConfig(std::string(*text), read)) {
            read = midiConfig; // a text that holds none changes nothing
        }
    }
    midiConfig = std::move(read);
    return std::string(content.variables());
}

std::string writeBankChunk(const Model::Programs& programs, const Model::MidiConfig& midiConfig,
                           std::string_view variables) {
    std::vector<std::string> patches;
    for (int program = 0; program < Model::Programs::kCount; ++program) {
        patches.push_back(Model::writePatch(programs[program]));
    }
    return packBankChunk({}, patches, Model::writeMidiConfig(midiConfig), variables);
}

std::string packBankChunk(const BankHeader& header, std::span<const std::string> patches,
                          std::string_view midiConfig, std::string_view variables) {
    std::string content;
    appendLittleEndian(content, static_cast<std::uint32_t>(patches.size()));
    for (const std::string& patch : patches) {
        appendString(content, patch);
    }
    content.append(kHostStateSize, '\0');
    if (header.magic == kNewestBankMagic) {
        appendString(content, midiConfig);
        if (!variables.empty()) {
            appendString(content, variables);
        }
    }
    return pack(header, content);
}

std::string readProgramChunk(std::string_view chunk, Model::Programs& programs) {
    const Chunk unpacked =
        unpack(chunk, {kFirstLegacyProgramMagic, kSecondLegacyProgramMagic}, {kProgramMagic});
    ByteReader content(unpacked.content);
    programs.currentPatch() = Model::readPatch(std::string(content.string()));
    return std::string(variablesBehind(content));
}

std::string writeProgramChunk(const Model::Patch& patch, std::string_view variables) {
    std::string content;
    appendString(content, Model::writePatch(patch));
    if (!variables.empty()) {
        appendString(content, variables);
    }
    return pack({.magic = kProgramMagic}, content);
}

} // namespace Bnk
