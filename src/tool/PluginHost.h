// A host with one plug-in instance and no window, which loads the plug-in's binary and speaks to it through
// the VST 2 interface alone, in the order that hosts do.
#pragma once

#include "platform/LoadedLibrary.h"
#include "vst2abi/Vst2.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Tool {

struct HostMessage {
    int sampleOffset = 0; // from the start of the block
    std::array<std::uint8_t, 3> bytes{};
};

class PluginHost {
public:
    // Throws std::runtime_error when there is no such plug-in, or it is not one for stereo sound.
    PluginHost(const std::filesystem::path& plugin, double sampleRate, int blockSize);
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    // What the song's time says from now on; nothing: there is a time, but no tempo and no position in beats.
    void setTempo(std::optional<double> beatsPerMinute) { tempo_ = beatsPerMinute; }

    // False: the plug-in refused.
    bool loadBank(std::string chunk) { return loadChunk(Kind::bank, chunk); }
    bool loadProgram(std::string chunk) { return loadChunk(Kind::program, chunk); }
    bool setParameterText(int index, std::string text);

    void selectProgram(int program); // from 0
    void setParameter(int index, float value) { effect_->setParameter(effect_, index, value); }

    // Sound flows between the two.
    void resume();
    void suspend();

    int latencySamples() const { return effect_->initialDelay; }

    // Up to blockSize samples; two channels each way.
    void process(const float* const* in, float* const* out, int samples,
                 std::span<const HostMessage> messages);

private:
    enum class Kind { bank, program };

    static Vst2::VstIntPtr callback(Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32 index,
                                    Vst2::VstIntPtr value, void* ptr, float opt);
    Vst2::VstIntPtr answer(Vst2::VstInt32 opcode);
    Vst2::VstIntPtr call(Vst2::VstInt32 opcode, Vst2::VstInt32 index = 0, Vst2::VstIntPtr value = 0,
                         void* ptr = nullptr, float opt = 0);
    bool loadChunk(Kind kind, std::string& chunk);
    void sendEvents(std::span<const HostMessage> messages);
    Vst2::VstTimeInfo* time();

    Platform::LoadedLibrary library_;
    double sampleRate_;
    int blockSize_;
    Vst2::AEffect* effect_ = nullptr;
    bool running_ = false;
    std::optional<double> tempo_;
    std::int64_t position_ = 0; // of the block's first sample
    Vst2::VstTimeInfo time_{};
    std::vector<Vst2::VstMidiEvent> events_;
    std::vector<std::uintptr_t> eventList_; // memory of a VstEvents
};

} // namespace Tool
