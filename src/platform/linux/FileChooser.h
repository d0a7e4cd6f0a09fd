// One of the ways in which the user's desktop may show a file dialog.
#pragma once

#include "platform/FileDialog.h"

#include <memory>
#include <optional>

namespace Platform {

struct ChooserOutcome {
    enum class Kind { chosen, cancelled, unavailable };

    Kind kind = Kind::unavailable;
    std::filesystem::path file;
};

class FileChooser {
public:
    // Takes the dialog off the screen when the user has not answered.
    virtual ~FileChooser() = default;

    // Returns at once; nothing as long as the user has not answered.
    virtual std::optional<ChooserOutcome> poll() = 0;
};

// Each is null when it is plain that this way does not exist here.
std::unique_ptr<FileChooser> openPortalChooser(const FileDialogRequest& request);
std::unique_ptr<FileChooser> openZenityChooser(const FileDialogRequest& request);
std::unique_ptr<FileChooser> openKdialogChooser(const FileDialogRequest& request);

// The path that a "file://" address names; empty for any other address.
std::filesystem::path pathOfFileAddress(std::string_view address);

} // namespace Platform
