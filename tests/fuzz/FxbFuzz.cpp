#include "ChunkFuzz.h"
#include "model/MidiConfig.h"
#include "model/Programs.h"
#include "state/BankFile.h"
#include "state/StartupBank.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file(reinterpret_cast<const char*>(data), size);
    std::string_view chunk;
    if (ChunkFuzz::reads([&] { chunk = Bnk::chunkOfBankFile(file); })) {
        if (Bnk::chunkOfBankFile(Bnk::bankFileOf(chunk)) != chunk) {
            std::abort();
        }
        Model::Programs programs;
        Model::MidiConfig midiConfig;
        ChunkFuzz::reads([&] { Bnk::readBankChunk(chunk, programs, midiConfig); });
    }
    Model::Programs programs;
    ChunkFuzz::reads([&] { Bnk::readStartupBank(file, programs); });
    return 0;
}
