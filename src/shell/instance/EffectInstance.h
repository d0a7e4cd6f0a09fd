// One effect in one host: joins the programs, the MIDI configuration, the preferences and the audio path, and
// keeps them in step with the host. It knows no plug-in interface; an adapter drives it and the editor works
// on it.
//
// Threads: what is marked [any] or [audio] never waits. The rest is the main thread's. Hosts that save from a
// thread of their own are why names and chunks are taken under lockState().
#pragma once

#include "instance/AudioPath.h"
#include "instance/Descriptor.h"
#include "instance/Host.h"
#include "instance/InstanceIdentity.h"

#include "model/KeptVariables.h"
#include "model/MidiConfigController.h"
#include "model/PatchController.h"
#include "model/Preferences.h"

#include <deque>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace Shell {

// What an instance finds when it is made. All of it outlives the instance.
struct Surroundings {
    Platform::SharedRecord& preferences;
    Model::TextFiles& files;
    std::string_view factoryBank; // a bank file
};

// What only an editor can do for the model.
class EditorServices {
public:
    virtual ~EditorServices() = default;
    virtual std::string translate(std::string_view text) const = 0;
    virtual std::string clipboardText() const = 0;
    virtual void setClipboardText(const std::string& text) = 0;
};

class EffectInstance : private Model::PatchSurroundings {
public:
    // Starts with the factory bank, then the user's startup bank and MIDI configuration. What of these is
    // damaged is reported and left out.
    EffectInstance(Host& host, const Surroundings& surroundings);
    ~EffectInstance() override = default;

    Host& host() { return host_; }
    const InstanceIdentity& identity() const { return identity_; }

    // --- Parameters, by id

    // [any] From the host, without undo.
    void setParameter(int id, float value) noexcept { programs_.currentPatch().setValue(id, value); }
    float parameter(int id) const noexcept { return programs_.currentPatch().value(id); }

    // From the editor: told to the host as automation. A gesture, from mouse down to mouse up, stands between
    // begin and end, and is one undo step. A change outside one is a gesture of its own to the host; a run of
    // them on one parameter is one undo step.
    void beginEdit(int id);
    void editParameter(int id, float value);
    void endEdit(int id);

    // --- Programs and the current patch

    Model::PatchController& patches() { return patches_; }
    const Model::PatchController& patches() const { return patches_; }
    const Model::Programs& programs() const { return programs_; }
    void selectProgram(int program) noexcept { programs_.select(program); } // [any] by the host
    void switchProgram(int program);                                       // by the editor; the host is told
    void renameProgram(const std::string& name);                           // by the host, without undo

    // --- State

    // The host's chunks. Reading throws what damaged data throws; what is well is then installed.
    std::string bankChunk() const;
    std::string programChunk() const;
    void readBankChunk(std::string_view chunk);
    void readProgramChunk(std::string_view chunk);

    // The programs of the factory bank as patch files, in a folder that does not exist. Throws what writing
    // throws; there is no folder then.
    void writeFactoryPatches(const std::filesystem::path& folder) const;

    // What new instances start with. Both throw when the preferences cannot be reached.
    void storeStartupBank();
    void forgetStartupBank();

    // Both are changed under lockState() only: they are part of the chunks.
    Model::MidiConfigController& midiConfigs() { return midiConfigs_; }
    const Model::MidiConfigController& midiConfigs() const { return midiConfigs_; }
    Model::KeptVariables& keptVariables() { return keptVariables_; }
    const Model::KeptVariables& keptVariables() const { return keptVariables_; }

    Model::Preferences& preferences() { return preferences_; }

    // Held for as long as it lives. What the host is to be told of what has been done meanwhile, it is told when
    // the last one goes: it may wait for a thread of its own then, which waits for the state.
    class [[nodiscard]] StateLock {
    public:
        explicit StateLock(const EffectInstance& effect) : effect_(effect) {
            effect_.stateMutex_.lock();
            ++effect_.stateLocks_;
        }
        ~StateLock() { effect_.unlockState(); }
        StateLock(const StateLock&) = delete;
        StateLock& operator=(const StateLock&) = delete;

    private:
        const EffectInstance& effect_;
    };
    StateLock lockState() const { return StateLock(*this); }

    // --- Sound

    AudioPath& audio() { return audio_; }
    const AudioPath& audio() const { return audio_; }
    void setSampleRate(double hertz) { audio_.setSampleRate(hertz); }
    void suspend() noexcept { suspended_.store(true, std::memory_order_relaxed); }
    void resume(); // also from a pause: nothing of before sounds on
    bool enabled() const noexcept; // neither suspended nor bypassed
    void process(const AudioBuffers& buffers) noexcept { audio_.process(buffers, host_.transport()); } // [audio]
    int tailSamples() const noexcept; // [any] how long the last frame may sound after the input has ended

    // --- The main thread's clock

    // Tells the host what MIDI has moved since the last time.
    void idle();

    // --- The editor

    void setEditorServices(EditorServices* services) { services_ = services; } // nullptr: gone
    // Counts whenever the current patch is another, so that the editor looks at all of it.
    unsigned patchReplacements() const { return replacements_.load(std::memory_order_relaxed); }

    // --- What went wrong behind the user's back, the oldest first

    void report(std::string message);
    std::optional<std::string> takeReport();
    std::string lastReport() const; // stays when it is taken

private:
    std::string translate(std::string_view text) const override;
    std::string clipboardText() const override;
    void setClipboardText(const std::string& text) override;
    void currentPatchReplaced() override;

    void start();
    template <typename Step> void attempt(Step step);
    void unlockState() const noexcept;

    Host& host_;
    const Surroundings surroundings_;
    const InstanceIdentity identity_ = InstanceIdentity::next();
    EditorServices* services_ = nullptr;
    std::string ownClipboard_; // while there is no editor
    mutable std::recursive_mutex stateMutex_;
    mutable int stateLocks_ = 0;           // that are held, one within another
    mutable bool displayIsOutdated_ = false; // the host does not know yet
    std::deque<std::string> reports_;
    std::string lastReport_;
    std::atomic<unsigned> replacements_{0};
    std::atomic<bool> suspended_{true};
    std::uint32_t editing_ = 0; // a bit for each parameter under a gesture
    std::uint32_t untouched_ = 0; // those of them that the gesture has not moved yet

    Model::Programs programs_;
    Model::MidiMapping mapping_;
    Model::Preferences preferences_;
    Model::KeptVariables keptVariables_;
    Model::PatchController patches_;
    Model::MidiConfigController midiConfigs_;
    AudioPath audio_;
};

} // namespace Shell
