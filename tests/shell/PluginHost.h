// A host for tests: loads the plug-in binary as any host does, answers what it asks, and notes what it is told.
#pragma once

#include "UserSettings.h"

#include "vst2abi/Vst2.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

struct Sound {
    std::vector<float> left;
    std::vector<float> right;

    explicit Sound(std::size_t samples = 0) : left(samples), right(samples) {}
    std::size_t size() const { return left.size(); }
    bool operator==(const Sound&) const = default;
};

Sound voice(std::size_t samples, double rate = 48000); // a buzz of 110 Hz with a little noise, panned
double level(const Sound& sound, std::size_t from = 0); // RMS of both channels
bool allFinite(const Sound& sound);

class PluginHost {
public:
    struct Answers {
        Vst2::VstIntPtr version = Vst2::kVstVersion;
        std::string vendor = "Test";
        std::string product = "Host";
        Vst2::VstIntPtr sizesWindow = 0;
    };
    struct Told {
        Vst2::VstInt32 opcode;
        Vst2::VstInt32 index;
        float value;
        bool duringProcess;
        bool operator==(const Told&) const = default;
    };

    PluginHost() : PluginHost(Answers{}) {}
    explicit PluginHost(const Answers& answers);
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    static Vst2::VSTPluginMainProc entry();

    explicit operator bool() const { return effect != nullptr; }
    Vst2::VstIntPtr call(Vst2::VstInt32 opcode, Vst2::VstInt32 index = 0, Vst2::VstIntPtr value = 0,
                         void* ptr = nullptr, float opt = 0) {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }
    // What the plug-in writes. "(overrun)" when it writes more than `longest` bytes and a NUL.
    std::string text(Vst2::VstInt32 opcode, Vst2::VstInt32 index = 0, std::size_t longest = 64);
    void start(double rate = 48000);
    void close();

    void set(Vst2::VstInt32 hostIndex, float value) { effect->setParameter(effect, hostIndex, value); }
    float get(Vst2::VstInt32 hostIndex) const { return effect->getParameter(effect, hostIndex); }

    void midi(Vst2::VstInt32 offset, int status, int data1, int data2 = 0);
    Sound process(const Sound& in, std::size_t from, std::size_t samples);
    Sound process(const Sound& in) { return process(in, 0, in.size()); }

    std::string chunk(bool program = false);
    bool setChunk(std::string chunk, bool program = false);

    std::vector<Told> told(Vst2::VstInt32 opcode) const; // so far, of this kind

    Vst2::AEffect* effect = nullptr;
    std::optional<Vst2::VstTimeInfo> time;
    std::vector<Told> everythingTold; // but questions
    std::function<void(Vst2::VstInt32 opcode)> whenTold;
    Answers answers;

private:
    static Vst2::VstIntPtr master(Vst2::AEffect* effect, Vst2::VstInt32 opcode, Vst2::VstInt32 index,
                                  Vst2::VstIntPtr value, void* ptr, float opt);
    Vst2::VstIntPtr answer(Vst2::VstInt32 opcode, Vst2::VstInt32 index, void* ptr, float opt);

    static thread_local PluginHost* creating_;
    std::atomic<std::thread::id> processing_{};
};
