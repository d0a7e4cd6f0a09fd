// The host's chunks, which hosts ask for on every autosave, of a bank whose values have many digits.
#include "model/MidiConfig.h"
#include "model/PatchRandomiser.h"
#include "model/PatchText.h"
#include "model/Programs.h"
#include "state/Chunks.h"

#include <benchmark/benchmark.h>

namespace {

void fill(Model::Programs& programs) {
    Model::PatchRandomiser random({1, 2, 3}, 1);
    for (int program = 0; program < Model::Programs::kCount; ++program) {
        random.randomise(programs[program]);
        for (int id = 0; id < Parameters::kCount; ++id) {
            programs[program].setValue(id, static_cast<float>(random.step()) * 0x1p-32f);
        }
        programs[program].setValue(Parameters::sync, 0);
    }
}

void patchWrite(benchmark::State& state) {
    Model::Programs programs;
    fill(programs);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Model::writePatch(programs[3]));
    }
}
BENCHMARK(patchWrite)->Unit(benchmark::kMicrosecond);

void patchRead(benchmark::State& state) {
    Model::Programs programs;
    fill(programs);
    const std::string text = Model::writePatch(programs[3]);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Model::readPatch(text).value(0));
    }
}
BENCHMARK(patchRead)->Unit(benchmark::kMicrosecond);

void bankChunkWrite(benchmark::State& state) {
    Model::Programs programs;
    fill(programs);
    std::size_t size = 0;
    for (auto _ : state) {
        size = Bnk::writeBankChunk(programs, {}).size();
    }
    state.counters["size"] = static_cast<double>(size);
}
BENCHMARK(bankChunkWrite)->Unit(benchmark::kMicrosecond);

void bankChunkRead(benchmark::State& state) {
    Model::Programs programs;
    fill(programs);
    const std::string chunk = Bnk::writeBankChunk(programs, {});
    Model::MidiConfig midiConfig;
    for (auto _ : state) {
        Bnk::readBankChunk(chunk, programs, midiConfig);
    }
}
BENCHMARK(bankChunkRead)->Unit(benchmark::kMicrosecond);

} // namespace
