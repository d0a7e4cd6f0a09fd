// What undo and redo go through: snapshots of patches in the order of the changes, each from before the
// change that its description names. The controller drives it and installs what it hands out. Entries before
// the position are undo targets, the one at the position and those behind it redo targets.
#pragma once

#include "model/Patch.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace Model {

class UndoHistory {
public:
    // Before an entry is added the oldest are dropped while there are more than this, so there is never more
    // than one entry above it.
    static constexpr std::size_t kCapacity = 100;

    struct Entry {
        std::string description; // as people read it; empty for a present that undo has kept for redo
        int program;
        std::unique_ptr<const Patch> patch;
    };

    // Notes the state before a change. Changes behind the position are forgotten. With `coalesce`, a change
    // that is described as the one before adds nothing: dragging a control makes one step.
    void record(std::string description, bool coalesce, const Patch& present, int program);

    // The entry to go back to; nullptr when there is none. The present is kept, so that redo returns to it.
    const Entry* undo(const Patch& present, int program);

    // The entry to go forward to; nullptr when there is none.
    const Entry* redo();

    // Of the change that undo takes back or redo makes again; empty when there is none.
    std::string undoDescription() const;
    std::string redoDescription() const;

    std::optional<int> newestProgram() const; // that of the last entry

    bool canUndo() const { return position_ > 0; }
    bool canRedo() const { return position_ + 1 < entries_.size(); }
    std::size_t size() const { return entries_.size(); }
    std::size_t position() const { return position_; }

private:
    void forgetFromPosition();
    void append(std::string description, const Patch& patch, int program);

    std::deque<Entry> entries_;
    std::size_t position_ = 0;
};

} // namespace Model
