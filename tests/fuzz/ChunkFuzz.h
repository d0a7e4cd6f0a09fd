// What the targets for saved state share. An input's first byte tells whether the rest is a whole block, or
// content that is packed into a sound one first: no fuzzer finds its way through a zlib stream.
#pragma once

#include "model/MidiConfigText.h"
#include "model/PatchText.h"
#include "notation/Errors.h"
#include "state/Bytes.h"
#include "state/Chunks.h"
#include "state/Compression.h"
#include "state/Errors.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace ChunkFuzz {

inline std::string chunkOf(const std::uint8_t* data, std::size_t size, std::uint32_t magic) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    if (input.empty() || input.front() % 2 == 0) {
        return std::string(input.substr(input.empty() ? 0 : 1));
    }
    const std::string_view content = input.substr(1);
    std::string chunk;
    Bnk::appendLittleEndian(chunk, magic);
    Bnk::appendLittleEndian(chunk, 0);
    Bnk::appendLittleEndian(chunk, Bnk::kPluginId);
    Bnk::appendLittleEndian(chunk, 0);
    Bnk::appendLittleEndian(chunk, static_cast<std::uint32_t>(content.size()));
    return chunk += Bnk::deflated(content);
}

// Runs `read`; only what readers say that they throw may come out.
template <class Read>
bool reads(Read read) {
    try {
        read();
        return true;
    } catch (const Bnk::Exception&) {
    } catch (const Model::PatchFormatError&) {
    } catch (const Model::MidiConfigRangeError&) {
    } catch (const Stackbrace::Exception&) {
    }
    return false;
}

} // namespace ChunkFuzz
