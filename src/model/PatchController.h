// What the editor does with whole patches, on the patch of the current program: initialise, open, save, copy,
// paste, exchange, randomise, undo and redo. Each operation first builds the new patch, then notes the state
// before it for undo, then installs the patch; when building fails nothing has changed. Everything is the
// main thread's.
#pragma once

#include "model/Programs.h"
#include "model/TextFiles.h"
#include "model/UndoHistory.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Model {

// What the controller needs of the plug-in and the system around it.
class PatchSurroundings {
public:
    virtual ~PatchSurroundings() = default;

    virtual std::string translate(std::string_view text) const = 0;

    virtual std::string clipboardText() const = 0; // empty when there is none
    virtual void setClipboardText(const std::string& text) = 0;

    // The current program, or what is in it, is another.
    virtual void currentPatchReplaced() = 0;
};

// Paste or exchange found nothing.
class NoClipboardContent : public std::runtime_error {
public:
    NoClipboardContent();
};

enum class UndoStep {
    ofRun, // joins the step before it when that changed the same parameter
    own,
};

// A message may switch programs on the audio thread at any time: an operation is on the program that it has found.
class PatchController {
public:
    PatchController(Programs& programs, TextFiles& files, PatchSurroundings& surroundings)
        : programs_(programs), files_(files), surroundings_(surroundings) {}

    AtomicPatch& current() { return programs_.currentPatch(); }
    const AtomicPatch& current() const { return programs_.currentPatch(); }

    // An empty name stands for the translation of "Init Patch".
    void initialise(const std::string& name = {});
    void open(const std::filesystem::path& file);
    void copy();
    void paste();
    void exchange();
    void randomise();

    void save(const std::filesystem::path& file);
    // The current patch's file, or a file name for a patch that has none.
    std::filesystem::path proposedFile() const;

    void changeParameter(int id, float value, UndoStep step = UndoStep::ofRun);
    void rename(const std::string& name);

    void undo();
    void redo();
    const UndoHistory& history() const { return history_; }

private:
    void install(const Patch& patch, std::string_view description);
    void goTo(const UndoHistory::Entry* entry);
    AtomicPatch patchFromClipboard() const;

    Programs& programs_;
    TextFiles& files_;
    PatchSurroundings& surroundings_;
    UndoHistory history_;
};

} // namespace Model
