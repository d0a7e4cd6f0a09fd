// What the bridge needs of the desktop and of the editor around it. The editor's window implements it, the
// command answers from variables, tests fake it. Everything is the main thread's.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Bridge {

struct FileQuestion {
    enum class Kind { open, save };

    struct Type {
        std::string name;      // as the dialog shows it
        std::string extension; // with its dot; empty: any file
    };

    Kind kind = Kind::open;
    std::string title;
    std::filesystem::path proposed; // a file, or a folder to start in; may be empty
    std::vector<Type> types;
};

class Environment {
public:
    using Chosen = std::function<void(const std::filesystem::path& file)>;

    virtual ~Environment() = default;

    // `chosen` is called when the user has chosen a file, at once or from the event loop, and never when the
    // user cancels. What it throws is shown to the user as what an action throws.
    virtual void chooseFile(const FileQuestion& question, Chosen chosen) = 0;

    virtual std::string clipboardText() = 0;
    virtual void setClipboardText(const std::string& text) = 0;

    virtual void tellUser(const std::string& message) = 0;

    // An action on behalf of something the user has chosen after the action that asked had returned. Errors
    // are shown to the user.
    virtual void perform(std::string_view action, std::string_view params) = 0;

    // All documents are to be loaded anew, with nothing kept of images.
    virtual void reloadEditor() = 0;
};

} // namespace Bridge
