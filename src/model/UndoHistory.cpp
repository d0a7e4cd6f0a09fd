#include "model/UndoHistory.h"

#include <utility>

namespace Model {

void UndoHistory::record(std::string description, bool coalesce, const Patch& present, int program) {
    if (position_ != entries_.size()) {
        forgetFromPosition();
    } else if (coalesce && !entries_.empty() && entries_.back().description == description) {
        return;
    }
    append(std::move(description), present, program);
    ++position_;
}

const UndoHistory::Entry* UndoHistory::undo(const Patch& present, int program) {
    if (!canUndo()) {
        return nullptr;
    }
    if (!canRedo()) {
        forgetFromPosition();
        append({}, present, program);
    }
    return &entries_[--position_];
}

const UndoHistory::Entry* UndoHistory::redo() {
    return canRedo() ? &entries_[++position_] : nullptr;
}

std::string UndoHistory::undoDescription() const {
    return position_ > 0 ? entries_[position_ - 1].description : std::string();
}

std::string UndoHistory::redoDescription() const {
    return canRedo() ? entries_[position_].description : std::string();
}

std::optional<int> UndoHistory::newestProgram() const {
    return entries_.empty() ? std::nullopt : std::optional(entries_.back().program);
}

void UndoHistory::forgetFromPosition() {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position_), entries_.end());
}

void UndoHistory::append(std::string description, const Patch& patch, int program) {
    while (entries_.size() > kCapacity) {
        entries_.pop_front();
        --position_;
    }
    entries_.push_back({std::move(description), program, patch.clone()});
}

} // namespace Model
