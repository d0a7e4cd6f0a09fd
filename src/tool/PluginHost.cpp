#include "tool/PluginHost.h"

#include "platform/PathText.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace Tool {

using namespace Vst2;

namespace {

constexpr const char* kVendor = "Murmelon";
constexpr const char* kProduct = "murmelon render";
constexpr VstIntPtr kHostVersion = 1062;
constexpr std::string_view kAbilities[] = {"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo"};
constexpr double kBeatsPerBar = 4;

VstIntPtr giveText(void* ptr, const char* text) {
    if (!ptr) {
        return 0;
    }
    std::strcpy(static_cast<char*>(ptr), text);
    return 1;
}

// What needs no instance, and is asked before there is one.
VstIntPtr answerForAll(VstInt32 opcode, void* ptr) {
    switch (opcode) {
    case audioMasterVersion:
        return kVstVersion;
    case audioMasterGetVendorString:
        return giveText(ptr, kVendor);
    case audioMasterGetProductString:
        return giveText(ptr, kProduct);
    case audioMasterGetVendorVersion:
        return kHostVersion;
    case audioMasterCanDo:
        return ptr && std::ranges::count(kAbilities, static_cast<const char*>(ptr)) > 0 ? 1 : 0;
    default:
        return 0;
    }
}

} // namespace

PluginHost::PluginHost(const std::filesystem::path& plugin, double sampleRate, int blockSize)
    : library_(plugin), sampleRate_(sampleRate), blockSize_(blockSize) {
    const auto enter = library_.function<AEffect*(audioMasterCallback)>(kEntryName);
    if (!enter) {
        throw std::runtime_error(
            fmt::format("{} is no VST 2 plug-in: it has no {}", Platform::utf8Of(plugin), kEntryName));
    }
    effect_ = enter(callback);
    if (!effect_ || effect_->magic != kEffectMagic) {
        throw std::runtime_error(fmt::format("{} could not start", Platform::utf8Of(plugin)));
    }
    effect_->resvd1 = reinterpret_cast<VstIntPtr>(this);
    call(effOpen);
    if (effect_->numInputs != 2 || effect_->numOutputs != 2 || !effect_->processReplacing) {
        call(effClose);
        throw std::runtime_error(fmt::format("{} is no stereo effect", Platform::utf8Of(plugin)));
    }
    call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
    call(effSetBlockSize, 0, blockSize);
}

PluginHost::~PluginHost() {
    if (running_) {
        suspend();
    }
    call(effClose);
}

VstIntPtr PluginHost::callback(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr, void* ptr, float) {
    auto* const host = effect ? reinterpret_cast<PluginHost*>(effect->resvd1) : nullptr;
    const VstIntPtr own = host ? host->answer(opcode) : 0;
    return own ? own : answerForAll(opcode, ptr);
}

VstIntPtr PluginHost::answer(VstInt32 opcode) {
    switch (opcode) {
    case audioMasterGetTime:
        return reinterpret_cast<VstIntPtr>(time());
    case audioMasterGetSampleRate:
        return static_cast<VstIntPtr>(sampleRate_);
    case audioMasterGetBlockSize:
        return blockSize_;
    case audioMasterIOChanged: // the delay is read when it is asked for
        return 1;
    default:
        return 0;
    }
}

VstIntPtr PluginHost::call(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}

bool PluginHost::loadChunk(Kind kind, std::string& chunk) {
    const bool isBank = kind == Kind::bank;
    VstPatchChunkInfo info{};
    info.version = 1;
    info.pluginUniqueID = effect_->uniqueID;
    info.pluginVersion = effect_->version;
    info.numElements = isBank ? effect_->numPrograms : effect_->numParams;
    if (call(isBank ? effBeginLoadBank : effBeginLoadProgram, 0, 0, &info) < 0) {
        return false;
    }
    return call(effSetChunk, isBank ? 0 : 1, static_cast<VstIntPtr>(chunk.size()), chunk.data()) != 0;
}

bool PluginHost::setParameterText(int index, std::string text) {
    return call(effString2Parameter, index, 0, text.data()) != 0;
}

void PluginHost::selectProgram(int program) {
    call(effBeginSetProgram);
    call(effSetProgram, 0, program);
    call(effEndSetProgram);
}

void PluginHost::resume() {
    call(effMainsChanged, 0, 1);
    call(effStartProcess);
    running_ = true;
    call(effIdle); // what the settings changed is told from the main thread
}

void PluginHost::suspend() {
    running_ = false;
    call(effStopProcess);
    call(effMainsChanged, 0, 0);
}

VstTimeInfo* PluginHost::time() {
    time_ = {};
    time_.samplePos = static_cast<double>(position_);
    time_.sampleRate = sampleRate_;
    time_.flags = kVstTransportPlaying | (position_ == 0 ? kVstTransportChanged : 0);
    if (tempo_) {
        time_.tempo = *tempo_;
        time_.ppqPos = time_.samplePos / sampleRate_ * *tempo_ / 60;
        time_.barStartPos = std::floor(time_.ppqPos / kBeatsPerBar) * kBeatsPerBar;
        time_.timeSigNumerator = static_cast<VstInt32>(kBeatsPerBar);
        time_.timeSigDenominator = 4;
        time_.flags |= kVstTempoValid | kVstPpqPosValid | kVstBarsValid | kVstTimeSigValid;
    }
    return &time_;
}

void PluginHost::sendEvents(std::span<const HostMessage> messages) {
    if (messages.empty()) {
        return;
    }
    events_.assign(messages.size(), VstMidiEvent{});
    for (std::size_t i = 0; i < messages.size(); ++i) {
        events_[i].type = kVstMidiType;
        events_[i].byteSize = sizeof(VstMidiEvent);
        events_[i].deltaFrames = messages[i].sampleOffset;
        std::memcpy(events_[i].midiData, messages[i].bytes.data(), messages[i].bytes.size());
    }
    constexpr std::size_t kHead = offsetof(VstEvents, events) / sizeof(std::uintptr_t);
    eventList_.assign(kHead + std::max<std::size_t>(messages.size(), 2), 0);
    auto* const list = reinterpret_cast<VstEvents*>(eventList_.data());
    list->numEvents = static_cast<VstInt32>(messages.size());
    for (std::size_t i = 0; i < messages.size(); ++i) {
        eventList_[kHead + i] = reinterpret_cast<std::uintptr_t>(&events_[i]);
    }
    call(effProcessEvents, 0, 0, list);
}

void PluginHost::process(const float* const* in, float* const* out, int samples,
                         std::span<const HostMessage> messages) {
    sendEvents(messages);
    // The interface's pointers are not const, but effects leave their input alone.
    float* inputs[2] = {const_cast<float*>(in[0]), const_cast<float*>(in[1])};
    float* outputs[2] = {out[0], out[1]};
    effect_->processReplacing(effect_, inputs, outputs, samples);
    position_ += samples;
}

} // namespace Tool
