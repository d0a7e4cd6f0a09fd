#include "PluginHost.h"

#include "platform/LoadedLibrary.h"

#include <cmath>
#include <cstring>

using namespace Vst2;

thread_local PluginHost* PluginHost::creating_ = nullptr;

Sound voice(std::size_t samples, double rate) {
    Sound sound(samples);
    std::uint32_t noise = 1;
    for (std::size_t i = 0; i < samples; ++i) {
        noise = noise * 1664525 + 1013904223;
        const double phase = std::fmod(110.0 * static_cast<double>(i) / rate, 1.0);
        const double value = 0.4 * (2 * phase - 1) + 1e-11 * (noise >> 1);
        sound.left[i] = static_cast<float>(value);
        sound.right[i] = static_cast<float>(0.6 * value);
    }
    return sound;
}

double level(const Sound& sound, std::size_t from) {
    double sum = 0;
    for (std::size_t i = from; i < sound.size(); ++i) {
        const double left = static_cast<double>(sound.left[i]);
        const double right = static_cast<double>(sound.right[i]);
        sum += left * left + right * right;
    }
    return std::sqrt(sum / static_cast<double>(2 * (sound.size() - from)));
}

bool allFinite(const Sound& sound) {
    for (std::size_t i = 0; i < sound.size(); ++i) {
        if (!std::isfinite(sound.left[i]) || !std::isfinite(sound.right[i])) {
            return false;
        }
    }
    return true;
}

VSTPluginMainProc PluginHost::entry() {
    static const auto* const library = new Platform::LoadedLibrary(MURMELON_PLUGIN); // until the program ends
    return library->function<AEffect*(audioMasterCallback)>(kEntryName);
}

PluginHost::PluginHost(const Answers& given) : answers(given) {
    creating_ = this;
    effect = entry()(master);
    creating_ = nullptr;
    if (effect != nullptr) {
        effect->resvd1 = reinterpret_cast<VstIntPtr>(this);
    }
}

PluginHost::~PluginHost() {
    close();
}

void PluginHost::close() {
    if (effect != nullptr) {
        call(effClose);
        effect = nullptr;
    }
}

VstIntPtr PluginHost::master(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr, void* ptr, float opt) {
    PluginHost* const host = effect != nullptr ? reinterpret_cast<PluginHost*>(effect->resvd1) : creating_;
    return host != nullptr ? host->answer(opcode, index, ptr, opt) : 0;
}

VstIntPtr PluginHost::answer(VstInt32 opcode, VstInt32 index, void* ptr, float opt) {
    switch (opcode) {
    case audioMasterVersion:
        return answers.version;
    case audioMasterGetVendorString:
        std::strcpy(static_cast<char*>(ptr), answers.vendor.c_str());
        return 1;
    case audioMasterGetProductString:
        std::strcpy(static_cast<char*>(ptr), answers.product.c_str());
        return 1;
    case audioMasterCanDo:
        return std::string_view(static_cast<char*>(ptr)) == "sizeWindow" ? answers.sizesWindow : 0;
    case audioMasterGetVendorVersion:
        return 1;
    case audioMasterGetTime:
        return time ? reinterpret_cast<VstIntPtr>(&*time) : 0;
    default:
        everythingTold.push_back({opcode, index, opt, processing_.load() == std::this_thread::get_id()});
        if (whenTold) {
            whenTold(opcode);
        }
        return 0;
    }
}

std::string PluginHost::text(VstInt32 opcode, VstInt32 index, std::size_t longest) {
    std::vector<char> buffer(longest + 64, '\x7F');
    call(opcode, index, 0, buffer.data());
    for (std::size_t i = longest + 1; i < buffer.size(); ++i) {
        if (buffer[i] != '\x7F') {
            return "(overrun)";
        }
    }
    const std::size_t end = std::string_view(buffer.data(), buffer.size()).find('\0');
    return end == std::string_view::npos ? "(nothing)" : std::string(buffer.data());
}

void PluginHost::start(double rate) {
    call(effOpen);
    call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
    call(effSetBlockSize, 0, 512);
    call(effMainsChanged, 0, 1);
}

void PluginHost::midi(VstInt32 offset, int status, int data1, int data2) {
    VstMidiEvent event{};
    event.type = kVstMidiType;
    event.byteSize = sizeof event;
    event.deltaFrames = offset;
    event.midiData[0] = static_cast<char>(status);
    event.midiData[1] = static_cast<char>(data1);
    event.midiData[2] = static_cast<char>(data2);
    VstEvents events{};
    events.numEvents = 1;
    events.events[0] = reinterpret_cast<VstEvent*>(&event);
    call(effProcessEvents, 0, 0, &events);
}

Sound PluginHost::process(const Sound& in, std::size_t from, std::size_t samples) {
    Sound out(samples);
    float* ins[] = {const_cast<float*>(in.left.data()) + from, const_cast<float*>(in.right.data()) + from};
    float* outs[] = {out.left.data(), out.right.data()};
    processing_ = std::this_thread::get_id();
    effect->processReplacing(effect, ins, outs, static_cast<VstInt32>(samples));
    processing_ = std::thread::id();
    return out;
}

std::string PluginHost::chunk(bool program) {
    void* data = nullptr;
    const VstIntPtr size = call(effGetChunk, program ? 1 : 0, 0, &data);
    return {static_cast<const char*>(data), static_cast<std::size_t>(size)};
}

bool PluginHost::setChunk(std::string chunk, bool program) {
    return call(effSetChunk, program ? 1 : 0, static_cast<VstIntPtr>(chunk.size()), chunk.data()) == 1;
}

std::vector<PluginHost::Told> PluginHost::told(VstInt32 opcode) const {
    std::vector<Told> some;
    for (const Told& told : everythingTold) {
        if (told.opcode == opcode) {
            some.push_back(told);
        }
    }
    return some;
}
