#include "vst2/Vst2Effect.h"

#include "platform/MemoryRecord.h"
#include "platform/ThisProgram.h"
#include "platform/UserRecord.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace Shell {

using namespace Vst2;

namespace {

Vst2Effect* effectOf(AEffect* record) noexcept {
    return record != nullptr ? static_cast<Vst2Effect*>(record->object) : nullptr;
}

// The entries from the host. Nothing that is thrown may leave them.

VstIntPtr dispatcher(AEffect* record, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                     float opt) noexcept {
    try {
        Vst2Effect* const found = effectOf(record);
        const auto effect = found != nullptr ? found->shared_from_this() : nullptr;
        if (effect == nullptr) {
            return 0;
        }
        if (opcode == effClose) {
            effect->close();
            if (effect.use_count() > 1) { // a host that closes it from within will let go of this code, too
                Platform::keepThisLibrary();
            }
            return 1;
        }
        return effect->dispatch(opcode, index, value, ptr, opt);
    } catch (...) {
        return 0;
    }
}

void setParameter(AEffect* record, VstInt32 index, float value) noexcept {
    if (Vst2Effect* const effect = effectOf(record)) {
        effect->setParameter(index, value);
    }
}

float getParameter(AEffect* record, VstInt32 index) noexcept {
    const Vst2Effect* const effect = effectOf(record);
    return effect != nullptr ? effect->getParameter(index) : 0;
}

void process(AEffect* record, float** in, float** out, VstInt32 samples) noexcept {
    if (Vst2Effect* const effect = effectOf(record)) {
        effect->process(in, out, samples, true);
    }
}

void processReplacing(AEffect* record, float** in, float** out, VstInt32 samples) noexcept {
    if (Vst2Effect* const effect = effectOf(record)) {
        effect->process(in, out, samples, false);
    }
}

// A user without a home still has an effect.
std::unique_ptr<Platform::SharedRecord> openPreferences() {
    try {
        return Platform::openUserRecord("preferences");
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        return std::make_unique<Platform::MemoryRecord>();
    }
}

bool isHostIndex(VstInt32 index) noexcept {
    return index >= 0 && index < Parameters::kCount;
}

int idOf(VstInt32 index) noexcept {
    return kDescriptor.hostOrder[static_cast<std::size_t>(index)];
}

// How many of the channels that the host has promised are really there.
int channelsIn(float** channels, int promised) noexcept {
    int count = 0;
    while (channels != nullptr && count < promised && channels[count] != nullptr) {
        ++count;
    }
    return count;
}

} // namespace

AEffect* createVst2Effect(audioMasterCallback host, const PluginParts& parts) {
    const auto effect = std::make_shared<Vst2Effect>(host, parts);
    effect->open();
    return &effect->record();
}

Vst2Effect::Vst2Effect(audioMasterCallback host, const PluginParts& parts)
    : host_(host, effect_), parts_(parts), preferences_(openPreferences()),
      instance_(host_, {*preferences_, files_, parts.factoryBank}), inChannels_(kDescriptor.input.channels),
      outChannels_(kDescriptor.output.channels) {
    effect_.magic = kEffectMagic;
    effect_.dispatcher = Shell::dispatcher;
    effect_.process = Shell::process;
    effect_.setParameter = Shell::setParameter;
    effect_.getParameter = Shell::getParameter;
    effect_.numPrograms = kDescriptor.programs;
    effect_.numParams = static_cast<VstInt32>(kDescriptor.hostOrder.size());
    effect_.numInputs = inChannels_;
    effect_.numOutputs = outChannels_;
    effect_.flags = effFlagsCanMono | effFlagsCanReplacing | effFlagsProgramChunks;
    effect_.flags |= kDescriptor.isSynth ? effFlagsIsSynth : 0;
    effect_.flags |= parts.makeEditor != nullptr ? effFlagsHasEditor : 0;
    effect_.initialDelay = instance_.audio().latencySamples();
    effect_.ioRatio = 1;
    effect_.object = this;
    effect_.uniqueID = static_cast<VstInt32>(kDescriptor.uniqueId);
    effect_.version = static_cast<VstInt32>(kDescriptor.version);
    effect_.processReplacing = Shell::processReplacing;
}

void Vst2Effect::open() {
    self_ = shared_from_this();
    host_.setOwner(self_);
}

void Vst2Effect::close() {
    effect_.object = nullptr;
    if (editor_ != nullptr) {
        editor_->close();
    }
    host_.fallSilent();
    self_.reset();
}

void Vst2Effect::setParameter(VstInt32 index, float value) noexcept {
    if (isHostIndex(index)) {
        instance_.setParameter(idOf(index), value);
    }
}

float Vst2Effect::getParameter(VstInt32 index) const noexcept {
    return isHostIndex(index) ? instance_.parameter(idOf(index)) : 0;
}

void Vst2Effect::process(float** in, float** out, VstInt32 samples, bool adding) noexcept {
    audioThread_.store(std::this_thread::get_id(), std::memory_order_relaxed);
    const AudioBuffers buffers = {.in = in,
                                  .inChannels = channelsIn(in, inChannels_.load(std::memory_order_relaxed)),
                                  .out = out,
                                  .outChannels = channelsIn(out, outChannels_.load(std::memory_order_relaxed)),
                                  .samples = samples,
                                  .adding = adding};
    if (samples > 0 && buffers.outChannels > 0) {
        instance_.process(buffers);
    }
}

void Vst2Effect::receive(const VstEvents* events) noexcept {
    for (VstInt32 i = 0; events != nullptr && i < events->numEvents; ++i) {
        const VstEvent* const event = events->events[i];
        if (event == nullptr || event->type != kVstMidiType) {
            continue;
        }
        const auto* const midi = reinterpret_cast<const VstMidiEvent*>(event);
        instance_.audio().receive({.sampleOffset = midi->deltaFrames,
                                   .status = static_cast<std::uint8_t>(midi->midiData[0]),
                                   .data1 = static_cast<std::uint8_t>(midi->midiData[1]),
                                   .data2 = static_cast<std::uint8_t>(midi->midiData[2])});
    }
}

VstIntPtr Vst2Effect::getChunk(bool program, void** data) {
    if (data == nullptr) {
        return 0;
    }
    const auto lock = instance_.lockState();
    std::string& chunk = program ? programChunk_ : bankChunk_;
    chunk = program ? instance_.programChunk() : instance_.bankChunk();
    *data = chunk.data();
    return static_cast<VstIntPtr>(chunk.size());
}

VstIntPtr Vst2Effect::setChunk(bool program, const void* data, VstIntPtr size) {
    if (data == nullptr || size <= 0) {
        return 0;
    }
    const std::string_view chunk(static_cast<const char*>(data), static_cast<std::size_t>(size));
    try {
        program ? instance_.readProgramChunk(chunk) : instance_.readBankChunk(chunk);
        return 1;
    } catch (const std::exception& error) {
        instance_.report(error.what()); // the host sees only the 0, the user the text
        return 0;
    }
}

Editor* Vst2Effect::editor() {
    if (editor_ == nullptr && parts_.makeEditor != nullptr) {
        editor_ = parts_.makeEditor(instance_);
    }
    return editor_.get();
}

VstIntPtr Vst2Effect::openEditor(void* parent) {
    try {
        if (Editor* const made = editor()) {
            made->open(parent);
            return 1;
        }
    } catch (const UserCancelled&) {
    } catch (const std::bad_alloc&) {
        showError("bad allocation");
    } catch (const std::exception& error) {
        showError(error.what());
    }
    return 0;
}

void Vst2Effect::showError(const std::string& text) noexcept {
    try {
        std::string message = "Error: ^E";
        message.replace(message.find("^E"), 2, text);
        if (parts_.showError != nullptr) {
            parts_.showError(std::string(kDescriptor.name), message);
        } else {
            instance_.report(message);
        }
    } catch (...) { // for want of memory: then nothing is said
    }
}

VstIntPtr Vst2Effect::editorRectangle(void* target) {
    if (target == nullptr) {
        return 0;
    }
    auto& answer = *static_cast<ERect**>(target);
    answer = nullptr;
    Editor* const made = editor();
    if (made == nullptr) {
        return 0;
    }
    const EditorSize size = made->size();
    rectangle_ = {.top = 0,
                  .left = 0,
                  .bottom = static_cast<VstInt16>(size.height),
                  .right = static_cast<VstInt16>(size.width)};
    answer = &rectangle_;
    return 1;
}

VstIntPtr Vst2Effect::idle() {
    instance_.idle();
    if (editor_ != nullptr) {
        editor_->idle();
    }
    return 1;
}

// Plain hosts process on the thread that made the effect, and there it is the main thread all the same.
bool Vst2Effect::onAudioThread() const noexcept {
    const auto here = std::this_thread::get_id();
    return here != creator_ && here == audioThread_.load(std::memory_order_relaxed);
}

void Vst2Effect::tellLatency() {
    const int latency = instance_.audio().latencySamples();
    if (latency == effect_.initialDelay || onAudioThread() || tellingHost_.exchange(true)) {
        return;
    }
    effect_.initialDelay = latency;
    if (open_) {
        host_.ioChanged();
    }
    tellingHost_ = false;
}

} // namespace Shell
