#include "ChunkFuzz.h"
#include "model/Programs.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint32_t kProgramMagic = 0x8293048A;
    Model::Programs programs;
    const std::string chunk = ChunkFuzz::chunkOf(data, size, kProgramMagic);
    ChunkFuzz::reads([&] { Bnk::readProgramChunk(chunk, programs); });
    const std::string written = Bnk::writeProgramChunk(programs.currentPatch());
    Bnk::readProgramChunk(written, programs);
    if (Bnk::writeProgramChunk(programs.currentPatch()) != written) {
        std::abort();
    }
    return 0;
}
