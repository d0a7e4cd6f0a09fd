// Patches as texts in the Stackbrace notation, for files, the clipboard and the host's state. Values are
// written as people read them ("22 kHz", "-12.0000000 sm"), so that a patch survives a change of the internal
// scales, with as many digits as it takes to come back to the same float.
//
// Texts in memory have LF line ends; files get theirs from Stackbrace::withFileLineEnds.
#pragma once

#include "model/Patch.h"

#include <stdexcept>
#include <string>

namespace Model {

inline constexpr int kPatchFormat = 1; // the current and only one

enum class PatchForm {
    full,
    compact, // without name, path and whether it is modified
};

// A text that is no patch, or one of another format.
class PatchFormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string writePatch(const Patch& patch, PatchForm form = PatchForm::full);

// `sourceName` is for messages. Throws PatchFormatError, or what the notation throws for a malformed text.
// Parameters that are missing or whose text says nothing get their defaults.
AtomicPatch readPatch(std::string text, std::string sourceName = {});

// Whether the text is a patch of a format that can be read.
bool isPatchText(std::string text);

} // namespace Model
