// The effect instance as a VST 2 host sees it. Only this room knows AEffect on the plug-in's side.
#pragma once

#include "vst2/HostCallback.h"

#include "instance/Editor.h"
#include "instance/EffectInstance.h"

#include "model/TextFiles.h"
#include "platform/SharedRecord.h"

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace Shell {

// What the plug-in binary puts into its effects.
struct PluginParts {
    std::string_view factoryBank;        // a bank file
    EditorFactory makeEditor = nullptr;  // none: an effect without an editor
    void (*showError)(const std::string& title, const std::string& text) noexcept = nullptr;
};

// For VSTPluginMain. The host owns the effect until it says effClose. Throws what creation throws.
Vst2::AEffect* createVst2Effect(Vst2::audioMasterCallback host, const PluginParts& parts);

// The host closes it with effClose, which may come from within one of its other calls when the effect has called the
// host or waits for an answer on the screen. Then it goes when they are back.
class Vst2Effect : public std::enable_shared_from_this<Vst2Effect> {
public:
    Vst2Effect(Vst2::audioMasterCallback host, const PluginParts& parts);
    Vst2Effect(const Vst2Effect&) = delete;
    Vst2Effect& operator=(const Vst2Effect&) = delete;

    Vst2::AEffect& record() { return effect_; }

    void open();  // belongs to the host from now on
    void close();

    // Every opcode but effClose. May throw.
    Vst2::VstIntPtr dispatch(Vst2::VstInt32 opcode, Vst2::VstInt32 index, Vst2::VstIntPtr value, void* ptr,
                             float opt);

    void setParameter(Vst2::VstInt32 index, float value) noexcept;      // [any]
    float getParameter(Vst2::VstInt32 index) const noexcept;            // [any]
    void process(float** in, float** out, Vst2::VstInt32 samples, bool adding) noexcept; // [audio]

private:
    // A published arrangement with all eight speakers that the record ends with.
    struct Speaker {
        float azimuth;
        float elevation;
        float radius;
        float reserved;
        char name[64];
        Vst2::VstInt32 type;
        char future[28];
    };
    struct Arrangement {
        Vst2::VstSpeakerArrangement head;
        Speaker speakers[8];
    };

    // The opcodes by what they are about. Each answers true when the opcode was one of its own.
    struct Call {
        Vst2::VstInt32 opcode;
        Vst2::VstInt32 index;
        Vst2::VstIntPtr value;
        void* ptr;
        float opt;
        Vst2::VstIntPtr answer = 0;
    };
    bool aboutPlugin(Call& call);
    bool aboutParameters(Call& call);
    bool aboutPrograms(Call& call);
    bool aboutState(Call& call);
    bool aboutSound(Call& call);
    bool aboutChannels(Call& call);
    bool aboutEditor(Call& call);

    void receive(const Vst2::VstEvents* events) noexcept;
    void renameProgram(const char* name);
    Vst2::VstIntPtr getChunk(bool program, void** data);
    Vst2::VstIntPtr setChunk(bool program, const void* data, Vst2::VstIntPtr size);
    bool setArrangement(const Vst2::VstSpeakerArrangement* in, const Vst2::VstSpeakerArrangement* out);
    bool describePin(Vst2::VstInt32 index, const Bus& bus, int channels, void* record) const;

    Editor* editor();
    Vst2::VstIntPtr openEditor(void* parent);
    Vst2::VstIntPtr editorRectangle(void* target);
    Vst2::VstIntPtr idle();
    void showError(const std::string& text) noexcept;

    void tellLatency();
    bool onAudioThread() const noexcept;

    Vst2::AEffect effect_{};
    HostCallback host_;
    PluginParts parts_;
    std::unique_ptr<Platform::SharedRecord> preferences_;
    Model::DiskFiles files_;
    EffectInstance instance_;
    std::unique_ptr<Editor> editor_; // made when the host asks for it first
    std::shared_ptr<Vst2Effect> self_; // until it is closed

    // What the host has been handed, and may look at until the next call of its kind.
    std::string bankChunk_;
    std::string programChunk_;
    Vst2::ERect rectangle_{};
    std::array<Arrangement, 2> arrangements_{}; // input, output

    std::atomic<int> inChannels_;
    std::atomic<int> outChannels_;
    bool open_ = false;                     // the host has the effect and may be called back about it
    std::atomic<bool> tellingHost_{false}; // and may call us from there
    const std::thread::id creator_ = std::this_thread::get_id();
    std::atomic<std::thread::id> audioThread_{};
};

} // namespace Shell
