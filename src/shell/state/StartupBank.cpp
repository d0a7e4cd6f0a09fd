#include "state/StartupBank.h"

#include "state/Bytes.h"
#include "state/Compression.h"

#include "model/PatchText.h"
#include "model/Programs.h"

namespace Bnk {

namespace {

constexpr std::uint32_t kMagic = 0xA5B65191;

} // namespace

bool readStartupBank(std::string_view entry, Model::Programs& programs) {
    ByteReader header(entry);
    if (header.littleEndian() != kMagic) {
        return false;
    }
    const std::uint32_t length = header.littleEndian();
    const std::string content = inflated(header.rest(), length);
    ByteReader reader(content);
    if (reader.littleEndian() != kBankTag) {
        return false;
    }
    const std::uint32_t count = reader.littleEndian();
    const auto current = static_cast<std::int32_t>(reader.littleEndian());
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string_view text = reader.string();
        if (i < static_cast<std::uint32_t>(Model::Programs::kCount)) {
            programs[static_cast<int>(i)] = Model::readPatch(std::string(text));
        }
    }
    programs.select(current);
    return true;
}

std::string writeStartupBank(const Model::Programs& programs) {
    std::string content;
    appendLittleEndian(content, kBankTag);
    appendLittleEndian(content, static_cast<std::uint32_t>(Model::Programs::kCount));
    appendLittleEndian(content, static_cast<std::uint32_t>(programs.current()));
    for (int program = 0; program < Model::Programs::kCount; ++program) {
        appendString(content, Model::writePatch(programs[program]));
    }
    std::string entry;
    appendLittleEndian(entry, kMagic);
    appendLittleEndian(entry, static_cast<std::uint32_t>(content.size()));
    return entry += deflated(content);
}

} // namespace Bnk
