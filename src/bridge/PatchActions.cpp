// Actions on patches and programs.
#include "bridge/ActionParams.h"
#include "bridge/ChangeParam.h"
#include "bridge/EditorActions.h"
#include "model/PatchFolder.h"
#include "model/PatchMenu.h"
#include "model/PathText.h"
#include "model/Product.h"
#include "platform/UserFolders.h"

#include <string>

namespace Bridge {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kDefaultName = "[xlate]Init Patch[/xlate]";
constexpr std::string_view kFolderEntry = "patchFolder"; // where the user was last

// Menu commands of items that the layout adds; above those of patches and programs.
constexpr int kFirstExtra = 1 << 20;
constexpr int kFirstProgram = 1;

// An item that a layout adds to one of our menus.
struct ExtraItem {
    std::string action;
    std::string params;
};

// `above` and `below`: lists of { caption, action, params }; "-" is a line between items.
class ExtraItems {
public:
    ExtraItems(const ActionParams& params, const Quilt::ActionContext& context)
        : params_(params), context_(context) {}

    void append(std::string_view key, std::vector<Quilt::MenuItem>& menu) {
        const auto* list = params_.find(key);
        if (!list) {
            return;
        }
        for (const auto& element : list->list()) {
            if (!element.raw().starts_with('{')) {
                if (element.string() != "-") {
                    params_.refuse();
                }
                menu.emplace_back();
                continue;
            }
            const auto structure = element.structure();
            Quilt::MenuItem item;
            item.caption = context_.expandMetaText(structure["caption"].string());
            const auto action = structure["action"];
            if (!action.empty()) {
                item.id = kFirstExtra + static_cast<int>(items_.size());
                items_.push_back({action.string(), std::string(structure["params"].raw())});
            }
            menu.push_back(std::move(item));
        }
    }

    std::vector<ExtraItem> take() { return std::move(items_); }

private:
    const ActionParams& params_;
    const Quilt::ActionContext& context_;
    std::vector<ExtraItem> items_;
};

bool performExtra(Environment& environment, const std::vector<ExtraItem>& extras, int id) {
    if (id < kFirstExtra) {
        return false;
    }
    const ExtraItem& item = extras.at(static_cast<std::size_t>(id - kFirstExtra));
    environment.perform(item.action, item.params);
    return true;
}

fs::path factoryFolder() {
    return Platform::supportFolder() / Model::PatchMenu::folderName(Model::PatchMenu::Folder::factory);
}

fs::path userFolder() {
    return Platform::supportFolder() / Model::PatchMenu::folderName(Model::PatchMenu::Folder::user);
}

Model::PatchMenu::Folder kindOf(const fs::path& folder) {
    return folder == userFolder()      ? Model::PatchMenu::Folder::user
           : folder == factoryFolder() ? Model::PatchMenu::Folder::factory
                                       : Model::PatchMenu::Folder::other;
}

std::string doubledAmpersands(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result.append(c == '&' ? 2 : 1, c);
    }
    return result;
}

// -1 or 1.
int readStep(const ActionParams& params) {
    const auto step = params.integer("step");
    if (!step || (*step != -1 && *step != 1)) {
        params.refuse();
    }
    return *step;
}

} // namespace

void EditorActions::initPatch(const Call& call) {
    const ActionParams params(call.action, call.params, {"name"});
    const std::string name = call.context.expandMetaText(params.string("name").value_or(std::string(kDefaultName)));
    const auto lock = effect_.lockState();
    effect_.patches().initialise(name);
}

void EditorActions::copyPatch(const Call&) {
    effect_.patches().copy();
}

void EditorActions::pastePatch(const Call&) {
    const auto lock = effect_.lockState();
    effect_.patches().paste();
}

void EditorActions::exchangePatch(const Call&) {
    const auto lock = effect_.lockState();
    effect_.patches().exchange();
}

void EditorActions::randomizePatch(const Call&) {
    const auto lock = effect_.lockState();
    effect_.patches().randomise();
}

void EditorActions::openPatch(const Call&) {
    browsePatches();
}

void EditorActions::browsePatches() {
    FileQuestion question;
    question.title = "Open Patch";
    question.proposed = patchFolder();
    question.types = {{"Korvanta Patch", std::string(Model::kPatchExtension)}, {"All Files", ""}};
    environment_.chooseFile(question, [this](const fs::path& file) { openPatchFile(file); });
}

void EditorActions::openPatchFile(const fs::path& file) {
    {
        const auto lock = effect_.lockState();
        effect_.patches().open(file);
    }
    rememberPatchFolder(file.parent_path());
}

void EditorActions::savePatch(const Call&) {
    FileQuestion question;
    question.kind = FileQuestion::Kind::save;
    question.title = "Save Patch";
    question.proposed = effect_.patches().proposedFile();
    if (!question.proposed.has_parent_path()) {
        const fs::path folder = patchFolder();
        std::error_code ignored; // the dialog shows where it is instead
        fs::create_directories(folder, ignored);
        question.proposed = folder / question.proposed;
    }
    question.types = {{"Korvanta Patch", std::string(Model::kPatchExtension)}, {"All Files", ""}};
    environment_.chooseFile(question, [this](const fs::path& file) {
        {
            const auto lock = effect_.lockState();
            effect_.patches().save(file);
        }
        rememberPatchFolder(file.parent_path());
    });
}

// Where the user has gone in the menu, else where the current patch lies, else where the user was last, else
// the user's own patches.
fs::path EditorActions::patchFolder() const {
    if (!browsed_.empty()) {
        return browsed_;
    }
    if (const auto folder = effect_.patches().current().path().parent_path(); !folder.empty()) {
        return folder;
    }
    const auto last = effect_.preferences().get(kFolderEntry);
    return last && !last->empty() ? Model::pathFromUtf8(*last) : userFolder();
}

void EditorActions::rememberPatchFolder(const fs::path& folder) {
    browsed_.clear();
    effect_.preferences().set(kFolderEntry, Model::toUtf8(folder));
}

void EditorActions::choosePatch(const Call& call) {
    namespace Menu = Model::PatchMenu;
    const fs::path folder = patchFolder();
    const ActionParams params(call.action, call.params, {"above", "below"});
    ExtraItems extras(params, call.context);
    std::vector<Quilt::MenuItem> items;
    extras.append("above", items);
    const auto files = Model::patchFilesIn(folder);
    const fs::path current = effect_.patches().current().path();
    const auto translate = [&](std::string_view text) { return call.context.translate(text); };
    for (const Model::MenuItem& item : Menu::items(files, kindOf(folder), translate)) {
        const auto file = Menu::fileIndex(item.command, files.size());
        items.push_back({item.caption, item.enabled, file && files[*file] == current, {}, item.command});
    }
    extras.append("below", items);

    call.context.desktop().popUpMenu(
        items, call.context.anchor(),
        [this, files, extraItems = extras.take(), again = std::string(call.params)](std::optional<int> id) {
            if (!id || performExtra(environment_, extraItems, *id)) {
                return;
            }
            if (*id == Menu::kBrowse) {
                browsePatches();
            } else if (*id == Menu::kGoToFactoryPatches || *id == Menu::kGoToUserPatches) {
                browsed_ = *id == Menu::kGoToUserPatches ? userFolder() : factoryFolder();
                if (*id == Menu::kGoToFactoryPatches && !fs::exists(browsed_)) {
                    effect_.writeFactoryPatches(browsed_); // the plug-in is one file: they come with it
                }
                environment_.perform("choosePatch", again); // the menu of that folder
            } else if (const auto file = Menu::fileIndex(*id, files.size())) {
                openPatchFile(files[*file]);
            }
        });
}

void EditorActions::switchPatch(const Call& call) {
    const ActionParams params(call.action, call.params, {"step", "wrap"});
    const int step = readStep(params);
    const bool wrap = params.boolean("wrap", false);
    const fs::path current = effect_.patches().current().path();
    const fs::path next = Model::neighbour(Model::patchFilesIn(patchFolder()), current, step, wrap);
    if (!next.empty() && next != current) {
        openPatchFile(next);
    }
}

void EditorActions::undo(const Call&) {
    const auto lock = effect_.lockState();
    effect_.patches().undo();
}

void EditorActions::redo(const Call&) {
    const auto lock = effect_.lockState();
    effect_.patches().redo();
}

void EditorActions::chooseProgram(const Call& call) {
    const ActionParams params(call.action, call.params, {"above", "below"});
    ExtraItems extras(params, call.context);
    std::vector<Quilt::MenuItem> items;
    extras.append("above", items);
    for (int i = 0; i < Model::Programs::kCount; ++i) {
        const std::string number = std::to_string(i + 1);
        items.push_back({number + ". " + doubledAmpersands(effect_.programs()[i].name()), true,
                         i == effect_.programs().current(), {}, kFirstProgram + i});
    }
    extras.append("below", items);
    call.context.desktop().popUpMenu(items, call.context.anchor(),
                                     [this, extraItems = extras.take()](std::optional<int> id) {
                                         if (id && !performExtra(environment_, extraItems, *id)) {
                                             effect_.switchProgram(*id - kFirstProgram);
                                         }
                                     });
}

void EditorActions::switchProgram(const Call& call) {
    const ActionParams params(call.action, call.params, {"step", "wrap"});
    int next = effect_.programs().current() + readStep(params);
    if (params.boolean("wrap", false)) {
        next = (next + Model::Programs::kCount) % Model::Programs::kCount;
    }
    if (next >= 0 && next < Model::Programs::kCount) {
        effect_.switchProgram(next);
    }
}

void EditorActions::makeBankDefault(const Call&) {
    effect_.storeStartupBank();
}

void EditorActions::resetBankDefault(const Call&) {
    effect_.forgetStartupBank();
}

} // namespace Bridge
