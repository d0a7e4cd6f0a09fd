// The opcodes of the host, one function for each thing they are about.
#include "vst2/HostKeys.h"
#include "vst2/Texts.h"
#include "vst2/Vst2Effect.h"

#include "parameters/ParameterText.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace Shell {

using namespace Vst2;

namespace {

// Hosts hand more room for a parameter's texts than the eight characters published, and need it.
constexpr std::size_t kParameterTextLength = 23;

constexpr VstIntPtr kMidiChannels = 16;
constexpr std::array<VstInt32, 2> kStereoSpeakers = {1, 2}; // left, right; a single one is 0

struct CanDo {
    std::string_view query;
    bool answer;
};
constexpr CanDo kCanDo[] = {
    {"conformsToWindowRules", true},
    {"receiveVstTimeInfo", true},
    {"bypass", !kDescriptor.isSynth},
    {"receiveVstEvents", kDescriptor.receivesMidi},
    {"receiveVstMidiEvent", kDescriptor.receivesMidi},
    {"sendVstEvents", kDescriptor.sendsMidi},
    {"sendVstMidiEvent", kDescriptor.sendsMidi},
};

bool canDo(const char* query) {
    return query != nullptr && std::ranges::any_of(kCanDo, [&](const CanDo& row) {
               return row.answer && row.query == query;
           });
}

// Some hosts save from a thread of their own. The rest is the main thread's.
bool mayComeFromAnyThread(VstInt32 opcode) {
    return opcode == effGetChunk || opcode == effGetProgram || opcode == effGetProgramName ||
           opcode == effGetProgramNameIndexed;
}

int channelsOf(VstInt32 arrangement) {
    return arrangement == kSpeakerArrMono ? 1 : arrangement == kSpeakerArrStereo ? 2 : 0;
}

} // namespace

VstIntPtr Vst2Effect::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    // These come on the audio thread.
    switch (opcode) {
    case effProcessEvents:
        receive(static_cast<const VstEvents*>(ptr));
        return 1;
    case effStartProcess:
    case effStopProcess:
        return 0;
    default:
        break;
    }
    Call call = {opcode, index, value, ptr, opt};
    aboutPlugin(call) || aboutParameters(call) || aboutPrograms(call) || aboutState(call) || aboutSound(call) ||
        aboutChannels(call) || aboutEditor(call);
    if (!mayComeFromAnyThread(opcode)) {
        tellLatency();
    }
    return call.answer;
}

bool Vst2Effect::aboutPlugin(Call& call) {
    switch (call.opcode) {
    case effOpen:
        if (!open_) {
            open_ = true;
            host_.needIdle();
        }
        return true;
    case effIdentify:
        call.answer = kIdentifyAnswer;
        return true;
    case effGetPlugCategory:
        call.answer = kPlugCategEffect;
        return true;
    case effGetEffectName:
        call.answer = copyText(kDescriptor.name, call.ptr, kVstMaxEffectNameLen);
        return true;
    case effGetVendorString:
        call.answer = copyText(kDescriptor.vendor, call.ptr, kVstMaxVendorStrLen);
        return true;
    case effGetProductString:
        call.answer = copyText(kDescriptor.name, call.ptr, kVstMaxProductStrLen);
        return true;
    case effGetVendorVersion:
        call.answer = kDescriptor.version;
        return true;
    case effGetVstVersion:
        call.answer = kVstVersion;
        return true;
    case effCanDo:
        call.answer = canDo(static_cast<const char*>(call.ptr));
        return true;
    case effGetErrorText:
        call.answer = copyText(instance_.lastReport(), call.ptr, kHostStringBuffer - 1);
        return true;
    case effIdle:
        call.answer = idle();
        return true;
    default:
        return false;
    }
}

bool Vst2Effect::aboutParameters(Call& call) {
    switch (call.opcode) {
    case effGetParamLabel:
    case effGetParamDisplay:
    case effGetParamName:
    case effCanBeAutomated:
    case effString2Parameter:
        break;
    default:
        return false;
    }
    if (call.index < 0 || call.index >= effect_.numParams) {
        return true;
    }
    const int id = kDescriptor.hostOrder[static_cast<std::size_t>(call.index)];
    const Parameters::Record& record = Parameters::kTable[static_cast<std::size_t>(id)];
    const bool syncOn = Parameters::isOn(instance_.parameter(Parameters::sync));
    switch (call.opcode) {
    case effGetParamLabel:
        call.answer = copyText(record.unit, call.ptr, kParameterTextLength);
        break;
    case effGetParamName:
        call.answer = copyText(record.displayName, call.ptr, kParameterTextLength);
        break;
    case effGetParamDisplay:
        call.answer =
            copyText(Parameters::valueToText(id, instance_.parameter(id), syncOn, Parameters::TextForm::display),
                     call.ptr, kParameterTextLength);
        break;
    case effCanBeAutomated:
        call.answer = 1;
        break;
    default: // effString2Parameter
        if (call.ptr == nullptr) {
            call.answer = 1; // it can be done
        } else if (const auto value = Parameters::textToValue(id, static_cast<const char*>(call.ptr), syncOn)) {
            instance_.setParameter(id, *value);
            call.answer = 1;
        }
    }
    return true;
}

bool Vst2Effect::aboutPrograms(Call& call) {
    const Model::Programs& programs = instance_.programs();
    switch (call.opcode) {
    case effSetProgram:
        if (call.value >= 0 && call.value < Model::Programs::kCount) {
            instance_.selectProgram(static_cast<int>(call.value));
        }
        return true;
    case effGetProgram:
        call.answer = programs.current();
        return true;
    case effSetProgramName:
        renameProgram(static_cast<const char*>(call.ptr));
        return true;
    case effGetProgramName: {
        const auto lock = instance_.lockState();
        call.answer = copyText(programs.currentPatch().name(), call.ptr, kVstMaxProgNameLen);
        return true;
    }
    case effGetProgramNameIndexed:
        if (call.index >= 0 && call.index < Model::Programs::kCount) {
            const auto lock = instance_.lockState();
            call.answer = copyText(programs[call.index].name(), call.ptr, kVstMaxProgNameLen);
        }
        return true;
    case effGetNumProgramCategories:
    case effBeginSetProgram:
    case effEndSetProgram:
        call.answer = 1;
        return true;
    default:
        return false;
    }
}

// A host that hands back what it was told, cut to the length that it can take, has renamed nothing.
void Vst2Effect::renameProgram(const char* name) {
    std::array<char, kVstMaxProgNameLen + 1> told{};
    const auto lock = instance_.lockState();
    copyText(instance_.programs().currentPatch().name(), told.data(), kVstMaxProgNameLen);
    if (name != nullptr && std::string_view(name) != told.data()) {
        instance_.renameProgram(name);
    }
}

bool Vst2Effect::aboutState(Call& call) {
    switch (call.opcode) {
    case effGetChunk:
        call.answer = getChunk(call.index != 0, static_cast<void**>(call.ptr));
        return true;
    case effSetChunk:
        call.answer = setChunk(call.index != 0, call.ptr, call.value);
        return true;
    case effBeginLoadBank:
    case effBeginLoadProgram:
        if (const auto* info = static_cast<const VstPatchChunkInfo*>(call.ptr)) {
            call.answer = info->pluginUniqueID == effect_.uniqueID ? 1 : -1; // -1: it cannot be loaded
        }
        return true;
    default:
        return false;
    }
}

bool Vst2Effect::aboutSound(Call& call) {
    switch (call.opcode) {
    case effSetSampleRate:
    case effSetBlockSizeAndSampleRate:
        instance_.setSampleRate(static_cast<double>(call.opt));
        call.answer = 1;
        return true;
    case effSetBlockSize: // any block will do
        call.answer = 1;
        return true;
    case effMainsChanged:
        if (call.value != 0) {
            instance_.resume();
            open_ = true;
        } else {
            instance_.suspend();
        }
        return true;
    case effSetBypass:
        instance_.audio().setBypassed(call.value != 0);
        call.answer = 1;
        return true;
    case effGetTailSize:
        call.answer = instance_.tailSamples();
        return true;
    case effSetProcessPrecision:
        call.answer = call.value == kVstProcessPrecision32;
        return true;
    case effGetNumMidiInputChannels:
        call.answer = kDescriptor.receivesMidi ? kMidiChannels : 0;
        return true;
    case effGetNumMidiOutputChannels:
        call.answer = kDescriptor.sendsMidi ? kMidiChannels : 0;
        return true;
    default:
        return false;
    }
}

bool Vst2Effect::aboutChannels(Call& call) {
    switch (call.opcode) {
    case effGetInputProperties:
        call.answer = describePin(call.index, kDescriptor.input, inChannels_, call.ptr);
        return true;
    case effGetOutputProperties:
        call.answer = describePin(call.index, kDescriptor.output, outChannels_, call.ptr);
        return true;
    case effSetSpeakerArrangement:
        call.answer = setArrangement(reinterpret_cast<const VstSpeakerArrangement*>(call.value),
                                     static_cast<const VstSpeakerArrangement*>(call.ptr));
        return true;
    case effGetSpeakerArrangement: {
        auto** const in = reinterpret_cast<VstSpeakerArrangement**>(call.value);
        auto** const out = static_cast<VstSpeakerArrangement**>(call.ptr);
        if (in == nullptr || out == nullptr) {
            return true;
        }
        const std::array<int, 2> channels = {inChannels_, outChannels_};
        for (std::size_t side = 0; side < channels.size(); ++side) {
            arrangements_[side] = {};
            arrangements_[side].head = {channels[side] == 1 ? kSpeakerArrMono : kSpeakerArrStereo,
                                        channels[side]};
            for (std::size_t i = 0; channels[side] == 2 && i < kStereoSpeakers.size(); ++i) {
                arrangements_[side].speakers[i].type = kStereoSpeakers[i];
            }
        }
        *in = &arrangements_[0].head;
        *out = &arrangements_[1].head;
        call.answer = 1;
        return true;
    }
    default:
        return false;
    }
}

bool Vst2Effect::setArrangement(const VstSpeakerArrangement* in, const VstSpeakerArrangement* out) {
    const auto fits = [](const VstSpeakerArrangement* side) {
        return side != nullptr && channelsOf(side->type) > 0 && side->numChannels == channelsOf(side->type);
    };
    if (!fits(in) || !fits(out)) {
        return false;
    }
    inChannels_ = in->numChannels;
    outChannels_ = out->numChannels;
    effect_.numInputs = in->numChannels;
    effect_.numOutputs = out->numChannels;
    return true;
}

bool Vst2Effect::describePin(VstInt32 index, const Bus& bus, int channels, void* record) const {
    if (record == nullptr || index < 0 || index >= channels) {
        return false;
    }
    VstPinProperties pin{};
    const std::string side = channels == 1 ? "" : index == 0 ? " L" : " R";
    copyText(std::string(bus.name) + side, pin.label, sizeof pin.label - 1);
    copyText(std::string(&bus == &kDescriptor.input ? "In" : "Out") + side, pin.shortLabel,
             sizeof pin.shortLabel - 1);
    pin.flags = kVstPinIsActive | (channels == 2 ? kVstPinIsStereo : 0);
    pin.arrangementType = channels == 1 ? kSpeakerArrMono : kSpeakerArrStereo;
    std::memcpy(record, &pin, sizeof pin);
    return true;
}

bool Vst2Effect::aboutEditor(Call& call) {
    switch (call.opcode) {
    case effEditGetRect:
        call.answer = editorRectangle(call.ptr);
        return true;
    case effEditOpen:
        call.answer = openEditor(call.ptr);
        return true;
    case effEditClose:
        if (editor_ != nullptr) {
            editor_->close();
            call.answer = 1;
        }
        return true;
    case effEditIdle:
        call.answer = idle();
        return true;
    case effEditKeyDown:
        call.answer = editor_ != nullptr && editor_->keyDown(keyOf(call.index, call.value, call.opt));
        return true;
    case effEditKeyUp:
        call.answer = editor_ != nullptr && editor_->keyUp(keyOf(call.index, call.value, call.opt));
        return true;
    default:
        return false;
    }
}

} // namespace Shell
