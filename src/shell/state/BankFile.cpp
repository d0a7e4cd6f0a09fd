#include "state/BankFile.h"

#include "state/Bytes.h"
#include "state/Chunks.h"
#include "state/Errors.h"

namespace Bnk {

namespace {

constexpr std::uint32_t kChunkMagic = 0x43636E4B; // "CcnK"
constexpr std::uint32_t kBankMagic = 0x46424368;  // "FBCh": a bank whose content is opaque
constexpr std::uint32_t kFirstFormat = 1;
constexpr std::uint32_t kSecondFormat = 2;
constexpr std::size_t kReserved = 128;

// The magic and the byte size itself are not counted in the byte size.
constexpr std::size_t kUncounted = 8;

// Up to the plug-in id: a file that does not reach that far has no header to speak of.
constexpr std::size_t kExaminedHeader = 20;

bool isHeaderOfOurBank(std::string_view file) {
    if (file.size() < kExaminedHeader) {
        return false;
    }
    ByteReader header(file);
    if (header.bigEndian() != kChunkMagic || header.bigEndian() + std::uint64_t{kUncounted} > file.size() ||
        header.bigEndian() != kBankMagic) {
        return false;
    }
    const std::uint32_t format = header.bigEndian();
    return (format == kFirstFormat || format == kSecondFormat) && header.bigEndian() == kPluginId;
}

} // namespace

std::string_view chunkOfBankFile(std::string_view file) {
    if (!isHeaderOfOurBank(file)) {
        throw FormatException("Invalid format of FXB data");
    }
    try {
        ByteReader reader(file.substr(kExaminedHeader));
        reader.bigEndian(); // version of the plug-in
        reader.bigEndian(); // number of programs: the chunk knows
        reader.bytes(kReserved);
        return reader.bytes(reader.bigEndian());
    } catch (const StreamException&) {
        throw StreamException("Unexpected end of file in FXB data");
    }
}

std::string bankFileOf(std::string_view chunk, const BankFileHeader& header) {
    std::string content;
    appendBigEndian(content, kBankMagic);
    appendBigEndian(content, kFirstFormat);
    appendBigEndian(content, kPluginId);
    appendBigEndian(content, header.pluginVersion);
    appendBigEndian(content, header.programs);
    content.append(kReserved, '\0');
    appendBigEndian(content, static_cast<std::uint32_t>(chunk.size()));
    content += chunk;
    std::string file;
    appendBigEndian(file, kChunkMagic);
    appendBigEndian(file, static_cast<std::uint32_t>(content.size()));
    return file += content;
}

} // namespace Bnk
