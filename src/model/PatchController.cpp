#include "model/PatchController.h"

#include "model/PatchRandomiser.h"
#include "model/PatchText.h"
#include "model/PathText.h"
#include "model/Product.h"
#include "notation/Writer.h"

namespace Model {

NoClipboardContent::NoClipboardContent() : std::runtime_error("No content on clipboard") {}

void PatchController::initialise(const std::string& name) {
    AtomicPatch patch;
    patch.setName(name.empty() ? surroundings_.translate("Init Patch") : name);
    install(patch, "Initialize Patch");
}

void PatchController::open(const std::filesystem::path& file) {
    AtomicPatch patch = readPatch(files_.read(file), toUtf8(file.filename()));
    patch.setPath(file);
    if (patch.name().empty()) {
        patch.setName(toUtf8(file.stem()));
    }
    patch.markSaved();
    install(patch, "Open Patch");
}

void PatchController::copy() {
    surroundings_.setClipboardText(writePatch(current()));
}

void PatchController::paste() {
    install(patchFromClipboard(), "Paste Patch");
}

void PatchController::exchange() {
    const std::string before = writePatch(current());
    const AtomicPatch patch = patchFromClipboard();
    surroundings_.setClipboardText(before);
    install(patch, "Exchange Patch");
}

void PatchController::randomise() {
    AtomicPatch patch; // without a path: saving it must not propose the file of the patch that it replaces
    PatchRandomiser().randomise(patch);
    patch.markModified();
    install(patch, "Randomize Patch");
}

void PatchController::save(const std::filesystem::path& file) {
    AtomicPatch& patch = current();
    const std::uint32_t stamp = patch.changeStamp();
    AtomicPatch saved = patch;
    saved.setPath(file);
    saved.markSaved();
    files_.write(file, Stackbrace::withFileLineEnds(writePatch(saved)));
    patch.setPath(file);
    if (patch.changeStamp() == stamp) {
        patch.markSaved(); // else automation has moved on while the file was written
    }
    surroundings_.currentPatchReplaced();
}

std::filesystem::path PatchController::proposedFile() const {
    if (auto path = current().path(); !path.empty()) {
        return path;
    }
    auto file = pathFromUtf8(surroundings_.translate("Untitled " + std::string(kProductName) + " Patch"));
    return file += kPatchExtension;
}

void PatchController::changeParameter(int id, float value, UndoStep step) {
    const int program = programs_.current();
    if (Parameters::clampNormalised(value) == programs_[program].value(id)) {
        return;
    }
    std::string description = surroundings_.translate("Change ^P");
    if (const auto placeholder = description.find("^P"); placeholder != std::string::npos) {
        const auto& record = Parameters::kTable[static_cast<std::size_t>(id)];
        description.replace(placeholder, 2, surroundings_.translate(record.displayName));
    }
    // A run ends with its program: a step shared by two would take back the change of the first alone.
    const bool goesOn = step == UndoStep::ofRun && history_.newestProgram() == program;
    history_.record(std::move(description), goesOn, programs_[program], program);
    programs_[program].setValue(id, value);
}

void PatchController::rename(const std::string& name) {
    const int program = programs_.current();
    AtomicPatch& patch = programs_[program];
    if (name == patch.name()) {
        return;
    }
    history_.record(surroundings_.translate("Change Patch Name"), false, patch, program);
    patch.setName(name);
    patch.markModified();
    surroundings_.currentPatchReplaced();
}

void PatchController::undo() {
    const int program = programs_.current();
    goTo(history_.undo(programs_[program], program));
}

void PatchController::redo() {
    goTo(history_.redo());
}

void PatchController::install(const Patch& patch, std::string_view description) {
    const int program = programs_.current();
    history_.record(surroundings_.translate(description), false, programs_[program], program);
    programs_[program].assign(patch);
    surroundings_.currentPatchReplaced();
}

void PatchController::goTo(const UndoHistory::Entry* entry) {
    if (entry) {
        programs_[entry->program].assign(*entry->patch);
        programs_.select(entry->program);
        surroundings_.currentPatchReplaced();
    }
}

AtomicPatch PatchController::patchFromClipboard() const {
    std::string text = surroundings_.clipboardText();
    if (text.empty()) {
        throw NoClipboardContent();
    }
    return readPatch(std::move(text));
}

} // namespace Model
