#include "ChunkFuzz.h"
#include "model/MidiConfig.h"
#include "model/Programs.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Model::Programs programs;
    Model::MidiConfig midiConfig;
    const std::string chunk = ChunkFuzz::chunkOf(data, size, Bnk::kNewestBankMagic);
    ChunkFuzz::reads([&] { Bnk::readBankChunk(chunk, programs, midiConfig); });
    // Whatever is in the slots now can be saved and comes back.
    const std::string written = Bnk::writeBankChunk(programs, midiConfig);
    Bnk::readBankChunk(written, programs, midiConfig);
    if (Bnk::writeBankChunk(programs, midiConfig) != written) {
        std::abort();
    }
    return 0;
}
