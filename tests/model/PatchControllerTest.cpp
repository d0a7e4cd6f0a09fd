// Undo history, whole-patch operations and the browsing menu.
#include "model/PatchController.h"
#include "model/PatchFolder.h"
#include "model/PatchMenu.h"
#include "model/PatchText.h"
#include "notation/Errors.h"

#include "FilesInMemory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

using namespace Model;
namespace fs = std::filesystem;

namespace {

AtomicPatch named(const std::string& name) {
    AtomicPatch patch;
    patch.setName(name);
    return patch;
}

} // namespace

TEST(UndoHistory, coalescesAndReplacesTheRedoTail) {
    UndoHistory history;
    history.record("Change", true, named("a"), 0);
    history.record("Change", true, named("b"), 0);
    EXPECT_EQ(history.size(), 1u);
    history.record("Change", false, named("b"), 0);
    history.record("Other", true, named("c"), 1);
    EXPECT_EQ(history.size(), 3u);
    EXPECT_EQ(history.undoDescription(), "Other");
    EXPECT_EQ(history.redoDescription(), "");

    EXPECT_EQ(history.undo(named("d"), 2)->patch->name(), "c");
    EXPECT_EQ(history.size(), 4u); // with the present
    EXPECT_EQ(history.position(), 2u);
    EXPECT_EQ(history.redoDescription(), "Other");
    EXPECT_EQ(history.undo(named("c"), 1)->patch->name(), "b");
    EXPECT_EQ(history.size(), 4u); // there is a present already
    history.record("Change", true, named("e"), 0);
    EXPECT_EQ(history.size(), 2u); // coalescing does not reach over an undo
    EXPECT_EQ(history.redo(), nullptr);
}

TEST(UndoHistory, redoReturnsToThePresent) {
    UndoHistory history;
    EXPECT_EQ(history.undo(named("x"), 0), nullptr);
    EXPECT_EQ(history.redo(), nullptr);
    history.record("1", false, named("a"), 3);
    history.record("2", false, named("b"), 4);
    history.undo(named("c"), 5);
    EXPECT_EQ(history.undo(named("b"), 4)->program, 3);
    EXPECT_EQ(history.undo(named("a"), 3), nullptr);
    EXPECT_EQ(history.redo()->patch->name(), "b");
    const auto* present = history.redo();
    EXPECT_EQ(present->patch->name(), "c");
    EXPECT_EQ(present->program, 5);
    EXPECT_EQ(history.redo(), nullptr);
    EXPECT_EQ(history.undoDescription(), "2");
    // From there again: the old present makes room for the new one.
    EXPECT_EQ(history.undo(named("c2"), 6)->patch->name(), "b");
    EXPECT_EQ(history.size(), 3u);
    EXPECT_EQ(history.redo()->patch->name(), "c2");
}

TEST(UndoHistory, holds101EntriesAtMost) {
    UndoHistory history;
    for (int i = 1; i <= 101; ++i) {
        history.record(std::to_string(i), false, named(std::to_string(i)), 0);
    }
    EXPECT_EQ(history.size(), 101u);
    history.record("102", false, named("102"), 0);
    EXPECT_EQ(history.size(), 101u);
    EXPECT_EQ(history.position(), 101u);
    // The present takes a place too: the oldest goes.
    EXPECT_EQ(history.undo(named("now"), 0)->patch->name(), "102");
    EXPECT_EQ(history.size(), 101u);
    EXPECT_EQ(history.position(), 99u);
    std::string oldest;
    while (const auto* entry = history.undo(named("?"), 0)) {
        oldest = entry->patch->name();
    }
    EXPECT_EQ(oldest, "3");
    int steps = 0;
    std::string newest;
    while (const auto* entry = history.redo()) {
        newest = entry->patch->name();
        ++steps;
    }
    EXPECT_EQ(steps, 100);
    EXPECT_EQ(newest, "now");
}

// --- controller --------------------------------------------------------------------------------------------

namespace {

struct FakeSurroundings : PatchSurroundings {
    std::string clipboard;
    int replaced = 0;

    std::function<void()> meanwhile; // what another thread does

    std::string translate(std::string_view text) const override {
        if (meanwhile) {
            meanwhile();
        }
        return "<" + std::string(text) + ">";
    }
    std::string clipboardText() const override { return clipboard; }
    void setClipboardText(const std::string& text) override { clipboard = text; }
    void currentPatchReplaced() override { ++replaced; }
};

struct PatchControllerTest : testing::Test {
    Programs programs;
    FakeSurroundings around;
    FilesInMemory disk{"/patches"};
    PatchController controller{programs, disk, around};

    PatchControllerTest() {
        controller.current().setName("before");
        controller.current().setValue(Parameters::mix, 0.25f);
    }
};

} // namespace

TEST_F(PatchControllerTest, anotherProgramInBetweenIsNotTouched) {
    struct Row {
        const char* operation;
        std::function<void()> perform;
    };
    const Row rows[] = {
        {"initialise", [&] { controller.initialise("mine"); }},
        {"randomise", [&] { controller.randomise(); }},
        {"rename", [&] { controller.rename("mine"); }},
        {"change", [&] { controller.changeParameter(Parameters::mix, 0.75f); }},
        {"save", [&] { controller.save("/patches/saved.kvmp"); }},
    };
    around.meanwhile = disk.meanwhile = [&] { programs.select(1); };
    const std::string first = writePatch(programs[0]);
    const std::string second = writePatch(programs[1]);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.operation);
        programs.select(0);
        row.perform();
        EXPECT_EQ(programs.current(), 1);
        EXPECT_NE(writePatch(programs[0]), first);
        EXPECT_EQ(writePatch(programs[1]), second);
        if (controller.history().canUndo()) {
            controller.undo();
            EXPECT_EQ(programs.current(), 0);
            EXPECT_EQ(writePatch(programs[0]), first);
            EXPECT_EQ(writePatch(programs[1]), second);
        }
    }
}

TEST_F(PatchControllerTest, eachOperationIsOneUndoStep) {
    disk.files["/patches/A & B.kvmp"] =
        "MurmelonPatch: { format: 1, name: \"opened\", modified: true, path: \"/elsewhere\" }";
    disk.files["/patches/nameless.kvmp"] = "MurmelonPatch: { format: 1 }";
    const std::string copied = writePatch(named("copied"));
    struct Row {
        std::function<void()> operation;
        std::string description;
        std::string name;
        std::string path;
        bool modified;
    };
    const Row rows[] = {
        {[&] { controller.initialise(); }, "<Initialize Patch>", "<Init Patch>", "", false},
        {[&] { controller.initialise("mine"); }, "<Initialize Patch>", "mine", "", false},
        {[&] { controller.open("/patches/A & B.kvmp"); }, "<Open Patch>", "opened", "/patches/A & B.kvmp",
         false},
        {[&] { controller.open("/patches/nameless.kvmp"); }, "<Open Patch>", "nameless",
         "/patches/nameless.kvmp", false},
        {[&] { controller.paste(); }, "<Paste Patch>", "copied", "", false},
        {[&] { controller.exchange(); }, "<Exchange Patch>", "copied", "", false},
        {[&] { controller.rename("renamed"); }, "<Change Patch Name>", "renamed", "", true},
    };
    for (const Row& row : rows) {
        around.clipboard = copied;
        const auto stepsBefore = controller.history().position();
        row.operation();
        EXPECT_EQ(controller.history().undoDescription(), row.description);
        EXPECT_EQ(controller.history().position(), stepsBefore + 1);
        EXPECT_EQ(controller.current().name(), row.name);
        EXPECT_EQ(controller.current().path(), row.path);
        EXPECT_EQ(controller.current().isModified(), row.modified);
        controller.undo();
        EXPECT_EQ(controller.current().name(), "before");
        EXPECT_EQ(controller.current().value(Parameters::mix), 0.25f);
    }
    EXPECT_EQ(around.replaced, 2 * static_cast<int>(std::size(rows)));
}

TEST_F(PatchControllerTest, randomisesIntoAPatchOfItsOwn) {
    controller.current().setPath("/patches/precious.kvmp");
    controller.randomise();
    EXPECT_EQ(controller.history().undoDescription(), "<Randomize Patch>");
    EXPECT_TRUE(controller.current().isModified());
    EXPECT_TRUE(controller.current().path().empty());
    EXPECT_NE(controller.current().name(), "before");
}

TEST_F(PatchControllerTest, copyAndExchangeUseTheClipboard) {
    controller.copy();
    EXPECT_EQ(readPatch(around.clipboard).name(), "before");
    EXPECT_EQ(controller.history().size(), 0u);
    around.clipboard = writePatch(named("other"));
    controller.exchange();
    EXPECT_EQ(controller.current().name(), "other");
    EXPECT_EQ(readPatch(around.clipboard).name(), "before");
    controller.exchange();
    EXPECT_EQ(controller.current().name(), "before");
    EXPECT_EQ(controller.current().value(Parameters::mix), 0.25f);
}

TEST_F(PatchControllerTest, failuresLeaveEverythingAsItWas) {
    disk.files["/patches/bad.kvmp"] = "MurmelonPatch: { format: 2 }";
    const auto stamp = controller.current().changeStamp();
    EXPECT_THROW(controller.open("/patches/bad.kvmp"), PatchFormatError);
    EXPECT_THROW(controller.open("/patches/none.kvmp"), std::runtime_error);
    EXPECT_THROW(controller.save("/readonly/a.kvmp"), std::runtime_error);
    EXPECT_THROW(controller.paste(), NoClipboardContent);
    around.clipboard = "{";
    EXPECT_THROW(controller.exchange(), Stackbrace::ParsingError);
    EXPECT_EQ(around.clipboard, "{");
    EXPECT_EQ(controller.history().size(), 0u);
    EXPECT_EQ(controller.current().changeStamp(), stamp);
    EXPECT_TRUE(controller.current().path().empty());
    EXPECT_EQ(around.replaced, 0);
}

TEST_F(PatchControllerTest, savesAndProposesFiles) {
    EXPECT_EQ(controller.proposedFile(), "<Untitled Murmelon Patch>.kvmp");
    controller.save("/patches/a.kvmp");
    EXPECT_FALSE(controller.current().isModified());
    EXPECT_EQ(controller.proposedFile(), "/patches/a.kvmp");
    const std::string& file = disk.files["/patches/a.kvmp"];
    EXPECT_THAT(file, testing::StartsWith("MurmelonPatch: {\r\n\tformat: 1\r\n\tname: \"before\"\r\n"
                                          "\tpath: \"/patches/a.kvmp\"\r\n\tmodified: false\r\n"));
    EXPECT_EQ(readPatch(file).value(Parameters::mix), 0.25f);
}

TEST_F(PatchControllerTest, runsOfParameterChangesAreOneStep) {
    for (const float value : {0.5f, 0.6f, 0.7f, 9.0f}) {
        controller.changeParameter(Parameters::frameRate, value);
    }
    EXPECT_EQ(controller.history().undoDescription(), "<Change <Frame Rate>>");
    EXPECT_EQ(controller.history().size(), 1u);
    controller.changeParameter(Parameters::frameRate, 1); // as it is
    controller.changeParameter(Parameters::pitch, 0.25f);
    EXPECT_EQ(controller.history().size(), 2u);
    controller.undo();
    EXPECT_EQ(controller.current().value(Parameters::frameRate), 1);
    controller.undo();
    EXPECT_EQ(controller.current().value(Parameters::frameRate), 0.9085603f);
    controller.redo();
    controller.redo();
    EXPECT_EQ(controller.current().value(Parameters::pitch), 0.25f);
}

TEST_F(PatchControllerTest, undoGoesBackToTheProgramOfTheChange) {
    controller.changeParameter(Parameters::pitch, 0);
    programs.select(7);
    controller.initialise("seventh");
    controller.undo();
    EXPECT_EQ(programs.current(), 7);
    controller.undo();
    EXPECT_EQ(programs.current(), 0);
    EXPECT_EQ(controller.current().value(Parameters::pitch), 0.5f);
    controller.redo();
    EXPECT_EQ(programs.current(), 7);
    controller.redo();
    EXPECT_EQ(controller.current().name(), "seventh");
    programs.select(16);
    programs.select(-1);
    EXPECT_EQ(programs.current(), 7);
}

TEST_F(PatchControllerTest, aRunEndsWithItsProgram) {
    controller.changeParameter(Parameters::pitch, 0.25f);
    programs.select(1);
    const float before = controller.current().value(Parameters::pitch);
    controller.changeParameter(Parameters::pitch, 0.625f);
    controller.changeParameter(Parameters::pitch, 0.75f);
    controller.undo();
    EXPECT_EQ(programs.current(), 1);
    EXPECT_EQ(controller.current().value(Parameters::pitch), before);
    controller.undo();
    EXPECT_EQ(programs.current(), 0);
    EXPECT_EQ(controller.current().value(Parameters::pitch), 0.5f);
}

// --- browsing ----------------------------------------------------------------------------------------------

TEST(PatchMenu, listsFilesAndWhereToGo) {
    const auto translate = [](std::string_view text) { return "<" + std::string(text) + ">"; };
    const auto items = [&](std::size_t count, PatchMenu::Folder folder) {
        std::vector<fs::path> files(count, "/patches/R&B && more.kvmp");
        return PatchMenu::items(files, folder, translate);
    };
    EXPECT_EQ(items(0, PatchMenu::Folder::user),
              (std::vector<MenuItem>{{"<Browse Patches...>", 100},
                                     {"<Go to Factory Patches>", PatchMenu::kGoToFactoryPatches},
                                     {"<No patches found>", 0, false}}));
    EXPECT_EQ(items(1, PatchMenu::Folder::factory),
              (std::vector<MenuItem>{{"<Browse Patches...>", 100},
                                     {"<Go to User Patches>", PatchMenu::kGoToUserPatches},
                                     {"R&&B &&&& more", 1000}}));
    EXPECT_EQ(items(500, PatchMenu::Folder::user).size(), 502u);
    EXPECT_EQ(items(500, PatchMenu::Folder::user).back().command, 1499);
    const auto many = items(501, PatchMenu::Folder::user);
    EXPECT_EQ(many.size(), 503u);
    EXPECT_EQ(many.back(), (MenuItem{"<Too many patches...>", 0, false}));

    EXPECT_EQ(PatchMenu::fileIndex(999, 3), std::nullopt);
    EXPECT_EQ(PatchMenu::fileIndex(1000, 3), 0u);
    EXPECT_EQ(PatchMenu::fileIndex(1002, 3), 2u);
    EXPECT_EQ(PatchMenu::fileIndex(1003, 3), std::nullopt);
    EXPECT_EQ(PatchMenu::fileIndex(1500, 600), std::nullopt);
    EXPECT_EQ(PatchMenu::folderName(PatchMenu::Folder::factory), "Murmelon Patches");
    EXPECT_EQ(PatchMenu::folderName(PatchMenu::Folder::user), "Murmelon User Patches");
}

TEST(PatchFolder, findsPatchFilesInOrder) {
    const fs::path folder = fs::temp_directory_path() / "murmelon-patch-folder-test";
    fs::remove_all(folder);
    fs::create_directories(folder / "folder.kvmp");
    for (const char* name : {"beta.kvmp", "Alpha.kvmp", "gamma.KVMP", ".hidden.kvmp", "note.txt", "kvmp"}) {
        std::ofstream(folder / name) << "x";
    }
    const auto files = patchFilesIn(folder);
    fs::remove_all(folder);
    EXPECT_THAT(files,
                testing::ElementsAre(folder / "Alpha.kvmp", folder / "beta.kvmp", folder / "gamma.KVMP"));
    EXPECT_TRUE(patchFilesIn(folder).empty());
}

TEST(PatchFolder, stepsThroughFiles) {
    const std::vector<fs::path> files = {"a", "b", "c"};
    struct Row {
        fs::path current;
        int step;
        bool wrap;
        fs::path next;
    };
    for (const auto& [current, step, wrap, next] :
         {Row{"a", 1, false, "b"}, Row{"c", 1, false, "c"}, Row{"c", 1, true, "a"}, Row{"a", -1, false, "a"},
          Row{"a", -1, true, "c"}, Row{"", 1, false, "a"}, Row{"elsewhere", -1, false, "c"}}) {
        EXPECT_EQ(neighbour(files, current, step, wrap), next) << current << step;
    }
    EXPECT_EQ(neighbour({}, "a", 1, true), fs::path());
}
