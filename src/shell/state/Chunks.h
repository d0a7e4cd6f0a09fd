// The opaque blocks that the host stores for the plug-in: one for all programs and the MIDI configuration,
// one for the current program alone. A little-endian header, then a zlib stream of patch texts.
#pragma once

#include "state/Bytes.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Model {
struct MidiConfig;
class Patch;
class Programs;
} // namespace Model

namespace Bnk {

// The four characters "BkMm", the first in the highest byte: what state of this plug-in is known by.
inline constexpr std::uint32_t kPluginId = 0x426B4D6D;

enum BankMagic : std::uint32_t {
    kFirstBankMagic = 0x714D7939,  // of the factory bank
    kSecondBankMagic = 0x714D793A, // read like the first
    kNewestBankMagic = 0x714D793B, // has the MIDI configuration behind the programs
};

// Reads all that is well, in order: texts are installed in the slots 0, 1, 2... as they come, those beyond
// the slots are dropped, and slots beyond the texts stay. When a part is not well it throws (Errors.h, or
// what reading patches and MIDI configurations throws), and what was installed before stays. Blocks without a
// MIDI configuration reset `midiConfig`.
//
// Both kinds of block may end in one text more: what layouts keep with the project or the program. Readers
// that know nothing of it never look there; an empty one is not written.
std::string readBankChunk(std::string_view chunk, Model::Programs& programs, Model::MidiConfig& midiConfig);
std::string writeBankChunk(const Model::Programs& programs, const Model::MidiConfig& midiConfig,
                           std::string_view variables = {});

// Into the slot of the current program.
std::string readProgramChunk(std::string_view chunk, Model::Programs& programs);
std::string writeProgramChunk(const Model::Patch& patch, std::string_view variables = {});

// A bank chunk's texts one after the other, for readers who want them as they stand.
class BankContent {
public:
    // Throws for a header or stream that is not well.
    explicit BankContent(std::string_view chunk);
    BankContent(const BankContent&) = delete; // the reader points into the text beside it
    BankContent& operator=(const BankContent&) = delete;

    std::uint32_t count() const { return count_; }

    // Call it `count` times. Throws StreamException when the content ends.
    std::string_view nextPatch() { return content_.string(); }

    // Behind the last patch: the MIDI configuration's text; nullopt for formats without.
    std::optional<std::string_view> midiConfig();

    // Behind that: the variables of layouts; empty for blocks without.
    std::string_view variables();

private:
    std::uint32_t magic_ = 0;
    std::string inflated_;
    ByteReader content_;
    std::uint32_t count_ = 0;
};

// The unexamined fields of a bank chunk's header tell who has written it.
struct BankHeader {
    std::uint32_t magic = kNewestBankMagic;
    std::uint32_t writerVersion = 0x00010602; // a byte each: 1.6.2
};

// A bank chunk of these texts. Older formats leave `midiConfig` out.
std::string packBankChunk(const BankHeader& header, std::span<const std::string> patches,
                          std::string_view midiConfig, std::string_view variables = {});

} // namespace Bnk
