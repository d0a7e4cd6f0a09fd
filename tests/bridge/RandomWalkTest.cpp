// Whatever the editor does in whatever order: values stay in range, the history within its bounds, and an
// error leaves the model as it was.
#include "Effects.h"

#include "model/PatchText.h"

#include <gtest/gtest.h>

#include <random>

using BridgeTest::Effect;

namespace {

constexpr int kSteps = 100000;

class Walk {
public:
    explicit Walk(std::uint32_t seed) : random_(seed), effect_(preferences_) {}

    std::string step() {
        switch (pick(14)) {
        case 0: return effect_.write("params." + parameter(), number());
        case 1: return effect_.write("params." + parameter() + ".human", number());
        case 2: return effect_.act("changeParam", "{ param: " + parameter() + ", by: " + number() + " }");
        case 3: return effect_.act("changeParam", "{ param: " + parameter() + ", toggle: true }");
        case 4: return effect_.act(one({"undo", "redo", "undo"}));
        case 5: return effect_.act("switchProgram", one({"{ step: 1 }", "{ step: -1, wrap: true }", "{ step: 3 }"}));
        case 6: return effect_.act(one({"initPatch", "randomizePatch", "copyPatch", "pastePatch", "exchangePatch"}));
        case 7:
            effect_.clipboard = one({"", "nonsense {", "MurmelonPatch: { format: 9 }"});
            return {};
        case 8:
            effect_.dialogAnswer = one({"", "folder/a.kvmp", "folder/b.kvmp", "elsewhere/c.kvmp"});
            return effect_.act(one({"openPatch", "savePatch"}));
        case 9: return effect_.write("patch.name", one({"One", "Two", "\"", ""}));
        case 10: return effect_.act("changeMidiConfig", one({"{ ccAssignments: { mix: 7 } }", "{ inputChannel: 17 }",
                                                            "{ masterTuning: 0.5 }", "{ pitchBendRange: 2 }", "{"}));
        case 11:
            effect_.chooseMenuItem(static_cast<std::size_t>(pick(20)));
            return effect_.act(one({"chooseProgram", "choosePatch"}));
        case 12: {
            const int id = static_cast<int>(pick(10));
            effect_.instance.setParameter(id, static_cast<float>(pick(100)) / 99);
            return {};
        }
        default:
            if (pick(20) == 0) {
                effect_.instance.audio().inject({0xB0, 7, static_cast<std::uint8_t>(pick(128))});
                effect_.process(16);
            }
            return {};
        }
    }

    std::string model() const {
        return Model::writePatch(effect_.instance.patches().current()) + effect_.value("programNumber") + " " +
               std::to_string(effect_.instance.patches().history().size()) + " " +
               std::to_string(effect_.instance.patches().history().position());
    }

    void check() const {
        const auto& patches = effect_.instance.patches();
        for (int id = 0; id < Parameters::kCount; ++id) {
            const float value = effect_.instance.parameter(id);
            ASSERT_TRUE(value >= 0 && value <= 1) << id;
        }
        ASSERT_LE(patches.history().size(), 101u);
        ASSERT_LE(patches.history().position(), patches.history().size());
        ASSERT_EQ(effect_.value("patch.modified"), patches.current().isModified() ? "true" : "false");
        ASSERT_EQ(effect_.value("undo.description").empty(), !patches.history().canUndo());
        ASSERT_EQ(effect_.host.begun, effect_.host.ended);
    }

private:
    std::uint32_t pick(std::uint32_t count) { return static_cast<std::uint32_t>(random_()) % count; }
    std::string one(std::initializer_list<const char*> choices) {
        return choices.begin()[pick(static_cast<std::uint32_t>(choices.size()))];
    }
    std::string parameter() {
        return pick(20) == 0 ? "nobody" : std::string(Parameters::kTable[pick(10)].name);
    }
    std::string number() {
        return one({"0", "1", "0.5", "-0.25", "0.125", "7", "-3", "1e30", "nan", "inf", "loud", ""});
    }

    std::mt19937 random_;
    Platform::MemoryRecord preferences_;
    mutable Effect effect_;
};

TEST(RandomWalk, KeepsItsInvariants) {
    Walk walk(20261121);
    int errors = 0;
    for (int i = 0; i < kSteps; ++i) {
        const bool watch = i % 16 == 0; // texts of whole patches are slow
        const std::string before = watch ? walk.model() : std::string();
        const std::string error = walk.step();
        errors += !error.empty();
        if (watch && !error.empty()) {
            ASSERT_EQ(walk.model(), before) << error;
        }
        ASSERT_NO_FATAL_FAILURE(walk.check()) << "step " << i;
    }
    EXPECT_GT(errors, kSteps / 100); // the walk does meet them
}

} // namespace
