// Bank files in the hosts' published format (FXB): a big-endian header around a bank chunk.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Bnk {

// The bank chunk inside. Throws FormatException for a header that is not this plug-in's bank, and
// StreamException for a chunk that runs past the data.
std::string_view chunkOfBankFile(std::string_view file);

// What no reader here examines, but hosts may.
struct BankFileHeader {
    std::uint32_t pluginVersion = 0x00010602;
    std::uint32_t programs = 16;
};

std::string bankFileOf(std::string_view chunk, const BankFileHeader& header = {});

} // namespace Bnk
