// How the host's calls reach an editor, and what happens when there is none to be had.
#include "vst2/HostKeys.h"
#include "vst2/Vst2Effect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>

using namespace Shell;
using namespace Vst2;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> happened; // a line each
std::function<void()> trouble;     // when the editor opens
std::function<void()> meanwhile;   // what the host does while the editor is idle

struct NotingEditor final : Editor {
    ~NotingEditor() override { happened.push_back("gone"); }
    EditorSize size() override { return {640, 400}; }
    void open(void* parent) override {
        trouble ? trouble() : happened.push_back("open " + std::to_string(reinterpret_cast<std::intptr_t>(parent)));
    }
    void close() noexcept override { happened.push_back("close"); }
    void idle() override {
        happened.push_back("idle");
        if (meanwhile) {
            meanwhile();
            happened.push_back("idle no more");
        }
    }
    bool keyDown(const Platform::KeyEvent& key) override { return key.character != U' '; }
};

VstIntPtr answer(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? kVstVersion : 0;
}

void shown(const std::string& title, const std::string& text) noexcept {
    happened.push_back(title + ": " + text);
}

struct EditorSeam : testing::Test {
    EditorSeam() {
        happened.clear();
        trouble = {};
        meanwhile = {};
    }
    static AEffect* make(EditorFactory factory) {
        return createVst2Effect(answer, {.factoryBank = {}, .makeEditor = factory, .showError = shown});
    }
    static AEffect* withEditor() {
        return make([](EffectInstance&) -> std::unique_ptr<Editor> { return std::make_unique<NotingEditor>(); });
    }
    static VstIntPtr call(AEffect* effect, VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0,
                          void* ptr = nullptr) {
        return effect->dispatcher(effect, opcode, index, value, ptr, 0);
    }
};

} // namespace

TEST_F(EditorSeam, theEditorIsDriven) {
    AEffect* const effect = withEditor();
    EXPECT_TRUE(effect->flags & effFlagsHasEditor);
    EXPECT_EQ(call(effect, effEditKeyDown, 'a'), 0); // not made yet
    ERect* rectangle = nullptr;
    EXPECT_EQ(call(effect, effEditGetRect, 0, 0, &rectangle), 1);
    EXPECT_EQ(rectangle->bottom, 400);
    EXPECT_EQ(rectangle->right, 640);
    EXPECT_EQ(call(effect, effEditOpen, 0, 0, reinterpret_cast<void*>(77)), 1);
    call(effect, effEditIdle);
    EXPECT_EQ(call(effect, effEditKeyDown, 'a'), 1);
    EXPECT_EQ(call(effect, effEditKeyDown, 0, VKEY_SPACE), 0); // the host's
    EXPECT_EQ(call(effect, effEditClose), 1);
    EXPECT_EQ(call(effect, effClose), 1);
    EXPECT_THAT(happened, ElementsAre("open 77", "idle", "close", "close", "gone"));
}

TEST_F(EditorSeam, theHostMayCloseTheEffectFromWithinACall) {
    AEffect* const effect = withEditor();
    call(effect, effEditOpen);
    meanwhile = [&] {
        EXPECT_EQ(call(effect, effClose), 1);
        EXPECT_EQ(call(effect, effEditIdle), 0); // closed it is
    };
    EXPECT_EQ(call(effect, effEditIdle), 1);
    EXPECT_THAT(happened, ElementsAre("open 0", "idle", "close", "idle no more", "gone"));
}

TEST_F(EditorSeam, troubleIsShownAndTheEffectLivesOn) {
    struct Row {
        std::function<void()> trouble;
        std::vector<std::string> shown;
    };
    for (const Row& row : {Row{[] { throw std::runtime_error("no display"); }, {"Murmelon: Error: no display"}},
                           Row{[] { throw std::bad_alloc(); }, {"Murmelon: Error: bad allocation"}},
                           Row{[] { throw UserCancelled(); }, {}}}) {
        trouble = row.trouble;
        AEffect* const effect = withEditor();
        happened.clear();
        EXPECT_EQ(call(effect, effEditOpen), 0);
        EXPECT_EQ(happened, row.shown);
        EXPECT_EQ(call(effect, effGetVstVersion), kVstVersion);
        call(effect, effClose);
    }
}

TEST_F(EditorSeam, aFactoryThatFails) {
    AEffect* const effect =
        make([](EffectInstance&) -> std::unique_ptr<Editor> { throw std::runtime_error("broken layout"); });
    ERect* rectangle = nullptr;
    EXPECT_EQ(call(effect, effEditGetRect, 0, 0, &rectangle), 0);
    EXPECT_THAT(happened, IsEmpty());
    EXPECT_EQ(call(effect, effEditOpen), 0);
    EXPECT_EQ(call(effect, effEditIdle), 1);
    EXPECT_EQ(call(effect, effClose), 1);
    EXPECT_THAT(happened, ElementsAre("Murmelon: Error: broken layout"));
}

TEST(HostKeys, becomeTheEditorsKeys) {
    using Platform::VirtualKey;
    struct Row {
        VstInt32 character;
        VstIntPtr virtualKey;
        float modifiers;
        char32_t shortcut;
        VirtualKey key;
        const char* text;
    };
    for (const Row& row : {Row{'a', 0, 0, U'a', VirtualKey::none, "a"},
                           Row{'A', 0, MODIFIER_SHIFT, U'a', VirtualKey::none, "A"},
                           Row{'z', 0, MODIFIER_CONTROL, U'z', VirtualKey::none, ""},
                           Row{'z', 0, MODIFIER_ALTERNATE, U'z', VirtualKey::none, ""},
                           Row{0xE4, 0, 0, 0xE4, VirtualKey::none, "\xC3\xA4"},
                           Row{0, VKEY_SPACE, 0, U' ', VirtualKey::space, " "},
                           Row{0, VKEY_NUMPAD9, 0, U'9', VirtualKey::numpad9, "9"},
                           Row{13, VKEY_RETURN, 0, 0, VirtualKey::enter, ""},
                           Row{127, VKEY_DELETE, 0, 0, VirtualKey::del, ""},
                           Row{0, VKEY_F12, 0, 0, VirtualKey::f12, ""},
                           Row{70000, -5, 1e30f, 0, VirtualKey::none, ""}}) {
        const Platform::KeyEvent event = keyOf(row.character, row.virtualKey, row.modifiers);
        EXPECT_EQ(event.character, row.shortcut) << row.character << " " << row.virtualKey;
        EXPECT_EQ(event.key, row.key) << row.character << " " << row.virtualKey;
        EXPECT_EQ(event.text, row.text) << row.character << " " << row.virtualKey;
    }
}
