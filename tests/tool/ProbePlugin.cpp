// A plug-in that writes down what its host does to it, to the file that the variable PROBE_LOG names, and
// hands its input on 100 samples later. Its version of the state is any chunk that does not begin with "bad".
#include "vst2abi/Vst2.h"

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string>
#include <string_view>

using namespace Vst2;

namespace {

constexpr std::size_t kDelay = 100;

struct Probe {
    AEffect effect{};
    audioMasterCallback host = nullptr;
    std::FILE* log = std::fopen(std::getenv("PROBE_LOG"), "wb");
    VstInt32 position = 0;
    std::deque<float> delayed[2] = {std::deque<float>(kDelay), std::deque<float>(kDelay)};
};

Probe& probeOf(AEffect* effect) {
    return *static_cast<Probe*>(effect->object);
}

void logEvents(Probe& probe, const VstEvents* events) {
    for (VstInt32 i = 0; i < events->numEvents; ++i) {
        const auto* const event = reinterpret_cast<const VstMidiEvent*>(events->events[i]);
        const auto* const data = reinterpret_cast<const unsigned char*>(event->midiData);
        std::fprintf(probe.log, "midi %d: %02x %02x %02x\n", probe.position + event->deltaFrames, data[0],
                     data[1], data[2]);
    }
}

VstIntPtr setChunk(Probe& probe, VstInt32 index, std::string_view chunk) {
    std::fprintf(probe.log, "chunk %s\n", index == 0 ? "of a bank" : "of a program");
    return !chunk.starts_with("bad");
}

VstIntPtr dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    Probe& probe = probeOf(effect);
    switch (opcode) {
    case effOpen:
        std::fprintf(probe.log, "open\n");
        return 0;
    case effClose:
        std::fprintf(probe.log, "close\n");
        std::fclose(probe.log);
        delete &probe;
        return 1;
    case effSetSampleRate:
        std::fprintf(probe.log, "rate %g\n", static_cast<double>(opt));
        return 0;
    case effSetBlockSize:
        std::fprintf(probe.log, "block %d\n", static_cast<int>(value));
        return 0;
    case effMainsChanged:
        std::fprintf(probe.log, value ? "resume\n" : "suspend\n");
        return 0;
    case effSetProgram:
        std::fprintf(probe.log, "program %d\n", static_cast<int>(value));
        return 0;
    case effSetChunk:
        return setChunk(probe, index, {static_cast<const char*>(ptr), static_cast<std::size_t>(value)});
    case effString2Parameter:
        std::fprintf(probe.log, "parameter %d \"%s\"\n", index, static_cast<const char*>(ptr));
        return std::string_view(static_cast<const char*>(ptr)) != "nonsense";
    case effProcessEvents:
        logEvents(probe, static_cast<const VstEvents*>(ptr));
        return 1;
    default:
        return 0;
    }
}

void setParameter(AEffect* effect, VstInt32 index, float value) {
    std::fprintf(probeOf(effect).log, "parameter %d %g\n", index, static_cast<double>(value));
}

void process(AEffect* effect, float** in, float** out, VstInt32 samples) {
    Probe& probe = probeOf(effect);
    const auto* const time = reinterpret_cast<const VstTimeInfo*>(
        probe.host(effect, audioMasterGetTime, 0, kVstPpqPosValid | kVstTempoValid, nullptr, 0));
    const bool playing = (time->flags & kVstTransportPlaying) != 0 && time->sampleRate > 0;
    std::fprintf(probe.log, "%s %g:", playing ? "play" : "stand", time->samplePos);
    if (time->flags & kVstTempoValid) {
        std::fprintf(probe.log, " tempo %g", time->tempo);
    }
    if (time->flags & kVstPpqPosValid) {
        std::fprintf(probe.log, " beat %g", time->ppqPos);
    }
    std::fprintf(probe.log, " %d samples\n", samples);
    for (int channel = 0; channel < 2; ++channel) {
        for (VstInt32 i = 0; i < samples; ++i) {
            probe.delayed[channel].push_back(in[channel][i]);
            out[channel][i] = probe.delayed[channel].front();
            probe.delayed[channel].pop_front();
        }
    }
    probe.position += samples;
}

} // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host) {
    if (host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) != kVstVersion) {
        return nullptr;
    }
    auto* const probe = new Probe;
    probe->host = host;
    probe->effect.magic = kEffectMagic;
    probe->effect.dispatcher = dispatch;
    probe->effect.setParameter = setParameter;
    probe->effect.processReplacing = process;
    probe->effect.numInputs = 2;
    probe->effect.numOutputs = 2;
    probe->effect.initialDelay = kDelay;
    probe->effect.object = probe;
    return &probe->effect;
}
