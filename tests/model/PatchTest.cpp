// The patch record, its text form and its random values.
#include "model/Patch.h"
#include "model/PatchRandomiser.h"
#include "model/PatchText.h"
#include "model/PathText.h"
#include "notation/Errors.h"
#include "notation/Writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <set>
#include <string>
#include <thread>
#include <vector>

using namespace Model;

TEST(Patch, isModifiedByChangesOnly) {
    AtomicPatch patch;
    EXPECT_FALSE(patch.isModified());
    const auto fresh = patch.changeStamp();
    patch.setValue(Parameters::mix, 1); // as it is
    patch.setValue(Parameters::mix, 7);
    EXPECT_FALSE(patch.isModified());
    EXPECT_EQ(patch.changeStamp(), fresh);
    patch.setValue(Parameters::mix, 0.5f);
    EXPECT_TRUE(patch.isModified());
    patch.markSaved();
    EXPECT_FALSE(patch.isModified());
    patch.markModified();
    EXPECT_TRUE(patch.isModified());
    patch.markSaved();
    patch.setValues(4, std::vector{0.25f, 0.75f});
    EXPECT_TRUE(patch.isModified());
    EXPECT_EQ(patch.value(4), 0.25f);
    EXPECT_EQ(patch.value(5), 0.75f);
}

TEST(Patch, copiesCarryEverything) {
    AtomicPatch patch;
    patch.setName("one");
    patch.setPath("/tmp/one.kvmp");
    patch.setValue(0, 1);
    const auto copy = patch.clone();
    EXPECT_EQ(copy->name(), "one");
    EXPECT_EQ(copy->path(), "/tmp/one.kvmp");
    EXPECT_EQ(copy->value(0), 1);
    EXPECT_TRUE(copy->isModified());
    patch.markSaved();
    EXPECT_TRUE(copy->isModified());
    AtomicPatch slot;
    slot.assign(patch);
    EXPECT_FALSE(slot.isModified());
    EXPECT_EQ(slot.changeStamp(), patch.changeStamp());
    EXPECT_NE(AtomicPatch().changeStamp(), AtomicPatch().changeStamp());
}

TEST(Patch, handsItsNameOutBounded) {
    AtomicPatch patch;
    patch.setName(std::string(300, 'x'));
    EXPECT_EQ(patch.name(), std::string(255, 'x'));
    std::array<char, 5> small;
    small.fill('?');
    patch.getName(std::span(small).first(4));
    EXPECT_EQ(std::string_view(small.data(), 5), std::string_view("xxx\0?", 5));
    patch.getName({});
}

TEST(Patch, threadsMeetOnlyInAtomics) {
    AtomicPatch slot;
    const AtomicPatch other;
    std::atomic<bool> stop{false};
    std::thread audio([&] {
        float sum = 0;
        for (int i = 0; !stop; ++i) {
            sum += slot.value(i % Parameters::kCount);
            slot.setValue(Parameters::pitch, static_cast<float>(i % 100) / 100);
        }
        EXPECT_GE(sum, 0);
    });
    std::set<std::uint32_t> stamps;
    for (int i = 0; i < 3000; ++i) {
        slot.setValue(Parameters::mix, static_cast<float>(i % 2));
        stamps.insert(slot.changeStamp());
        slot.clone();
        slot.isModified();
        slot.assign(other);
        slot.markSaved();
    }
    stop = true;
    audio.join();
    EXPECT_GT(stamps.size(), 2990u); // stamps are not handed out twice, whoever takes them
}

// --- text --------------------------------------------------------------------------------------------------

namespace {

constexpr std::string_view kOlderText = "MurmelonPatch: {\r\n"
                                        "\tformat: 1\r\n"
                                        "\tname: \"Pulse \\\"Fiction\\\" \\xe9\"\r\n"
                                        "\tmodified: true\r\n"
                                        "\tparameters: {\r\n"
                                        "\t\tsampleRate: \"11 kHz\"\r\n"
                                        "\t\tsync: \"Off\"\r\n"
                                        "\t\tframeRate: \"59.99999596149694 Hz\"\r\n"
                                        "\t\tmidi: \"On\"\r\n"
                                        "\t\tpitch: \"-36.0000000 sm\"\r\n"
                                        "\t\ttracking: \"100.0000000 %\"\r\n"
                                        "\t\tdetune: \"0.00000000000000 ct\"\r\n"
                                        "\t\tnoiseAdjust: \"-50.0000000%\"\r\n"
                                        "\t\tmix: \"100.0000000 %\"\r\n"
                                        "\t\tlegacyMode: \"Off\"\r\n"
                                        "\t}\r\n"
                                        "}\r\n";

std::string withParameters(const std::string& parameters) {
    return "MurmelonPatch: { format: 1, parameters: {" + parameters + "} }";
}

std::string failureOf(const std::string& text) {
    try {
        readPatch(text);
        return "none";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace

TEST(PatchText, readsAndWritesTheKnownShape) {
    const AtomicPatch patch = readPatch(std::string(kOlderText));
    EXPECT_EQ(patch.name(), "Pulse \"Fiction\" \xE9");
    EXPECT_TRUE(patch.isModified());
    EXPECT_EQ(patch.value(Parameters::sampleRate), 1.0f / 3);
    EXPECT_EQ(patch.value(Parameters::frameRate), 0.9085603f);
    EXPECT_EQ(patch.value(Parameters::noiseAdjust), 0.25f);
    std::string expected(kOlderText);
    for (std::string::size_type at; (at = expected.find(" %")) != std::string::npos;) {
        expected.erase(at, 1);
    }
    EXPECT_EQ(Stackbrace::withFileLineEnds(writePatch(patch)), expected);
    EXPECT_EQ(writePatch(patch, PatchForm::compact).substr(0, 44),
              "MurmelonPatch: {\n\tformat: 1\n\tparameters: {\n\t");
}

TEST(PatchText, everyPatchComesBackTheSame) {
    PatchRandomiser random({1, 2, 3}, 1);
    for (int i = 0; i < 300; ++i) {
        AtomicPatch patch;
        random.randomise(patch);
        patch.setValue(Parameters::sync, 0);
        for (const int id : {Parameters::frameRate, Parameters::pitch, Parameters::tracking,
                             Parameters::noiseAdjust, Parameters::mix}) {
            patch.setValue(id, static_cast<float>(0.01 + random.step() * 0x1p-32));
        }
        patch.setPath(pathFromUtf8("/Müllers Ordner/\xE2\x99\xAB \"a\".kvmp"));
        i % 2 ? patch.markSaved() : patch.markModified();
        const AtomicPatch back = readPatch(writePatch(patch));
        EXPECT_EQ(back.name(), patch.name());
        EXPECT_EQ(back.path(), patch.path());
        EXPECT_EQ(back.isModified(), patch.isModified());
        for (int id = 0; id < Parameters::kCount; ++id) {
            EXPECT_EQ(back.value(id), patch.value(id)) << id;
        }
    }
}

TEST(PatchText, whatIsMissingOrSaysNothingIsTheDefault) {
    struct Row {
        std::string parameters;
        int id;
        float value;
    };
    const Row rows[] = {
        {"mix: \"50 %\"", Parameters::mix, 0.5f},
        {"mix: 50%", Parameters::mix, 0.5f},
        {"mix: \"50\"", Parameters::mix, 0.5f},
        {"mix: \"half\", pitch: \"36 sm\"", Parameters::mix, 1},
        {"mix: \"half\", pitch: \"36 sm\"", Parameters::pitch, 1},
        {"mix: { 50 }", Parameters::mix, 1},
        {"Mix: \"50 %\"", Parameters::mix, 1},
        {"pitch: \"36sm\"", Parameters::pitch, 1},
        {"sampleRate: \"44 -> 48 kHz\"", Parameters::sampleRate, 1},
        {"sampleRate: \"12 kHz\"", Parameters::sampleRate, 0.6666667f},
        {"frameRate: \"10 Hz\"", Parameters::frameRate, 0.5f},
        {"frameRate: \"3/16 (1/8.)\", sync: \"On\"", Parameters::frameRate, 0.5f},
        {"frameRate: 8, sync: \"On\"", Parameters::frameRate, 0.9085603f},
        {"mix: 1, mix: 2", Parameters::mix, 0.01f},
    };
    for (const Row& row : rows) {
        const AtomicPatch patch = readPatch(withParameters(row.parameters));
        EXPECT_EQ(patch.value(row.id), row.value) << row.parameters;
        EXPECT_FALSE(patch.isModified());
    }
}

TEST(PatchText, syncedFrameRatesAreDivisions) {
    AtomicPatch patch;
    patch.setValue(Parameters::sync, 1);
    patch.setValue(Parameters::frameRate, 0.5f);
    EXPECT_THAT(writePatch(patch), testing::HasSubstr("\t\tframeRate: \"3/16 (1/8.)\"\n"));
}

TEST(PatchText, refuses) {
    struct Row {
        std::string text;
        std::string message;
    };
    const Row rows[] = {
        {"", "Invalid data format"},
        {"MurmelonBank: { }", "Invalid data format"},
        {"MurmelonPatch: { format: 0 }", "Patch format is too old"},
        {"MurmelonPatch: { format: -7, parameters: {} }", "Patch format is too old"},
        {"MurmelonPatch: { format: 2 }", "Patch format is too new"},
        {"MurmelonPatch: { format: one }", "Invalid number: one"},
        {"MurmelonPatch: { }", "Undefined element: format"},
        {"}", "Invalid Stackbrace at line 1 column 1 (offset 0)"},
        {"MurmelonPatch: {\n format: 1", "Invalid Stackbrace at line 2 column 11 (offset 27)"},
        {"MurmelonPatch: { format: 1, name: \"\\q\" }", "Invalid Stackbrace at line 1 column 36 (offset 35)"},
        {"MurmelonPatch: { format: 1, modified: yes }", "Invalid Stackbrace at line 1 column 39 (offset 38)"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(failureOf(row.text), row.message) << row.text;
    }
    EXPECT_TRUE(isPatchText(std::string(kOlderText)));
    EXPECT_TRUE(isPatchText("MurmelonPatch: { format: 1 }"));
    for (const char* text : {"", "MurmelonPatch: { format: 2 }", "MurmelonPatch: { format: 0 }", "}",
                             "MurmelonPatch: { format: x }", "MurmelonPatch: {"}) {
        EXPECT_FALSE(isPatchText(text)) << text;
    }
}

// --- random patches ----------------------------------------------------------------------------------------

// Worked out by another program from the rules.
TEST(PatchRandomiser, followsItsSeed) {
    struct Row {
        RandomSeed seed;
        std::uint32_t use;
        std::uint32_t firstStep;
        std::string name;
        std::uint32_t stepAfterName;
    };
    const Row rows[] = {
        {{0, 0, 0}, 1, 0x12b3ec8c, "brculxuqeflpqqvkts", 0x9c6a6496},
        {{1700000000, 123456, 0x123456789abcdef0}, 1, 0x4b37e5a7, "kcsnwqwtcddek", 0xbe487e2f},
        {{1700000000, 123456, 0x123456789abcdef0}, 2, 0x5b9688ad, "yatyclvhseswzfnkmty", 0x906b9080},
        {{0xffffffff, 0xffffffff, 0}, 65536, 0xbf21e2f6, "pguljncy", 0xcbb1302f},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(PatchRandomiser(row.seed, row.use).step(), row.firstStep);
        PatchRandomiser random(row.seed, row.use);
        EXPECT_EQ(random.name(), row.name);
        EXPECT_EQ(random.step(), row.stepAfterName);
    }
}

TEST(PatchRandomiser, makesPatchesWorthHearing) {
    std::set<std::string> names;
    std::array<std::set<float>, Parameters::kCount> values;
    for (int i = 0; i < 500; ++i) {
        AtomicPatch patch;
        PatchRandomiser().randomise(patch);
        EXPECT_EQ(patch.name().find_first_not_of("abcdefghijklmnopqrstuvwxyz"), std::string::npos);
        EXPECT_GE(patch.name().size(), 6u);
        EXPECT_LE(patch.name().size(), 22u);
        names.insert(patch.name());
        for (int id = 0; id < Parameters::kCount; ++id) {
            values[static_cast<std::size_t>(id)].insert(patch.value(id));
        }
    }
    EXPECT_GT(names.size(), 495u); // two within one tick of the clocks differ too
    EXPECT_EQ(values[Parameters::sampleRate], (std::set{0.0f, 1.0f / 3, 2.0f / 3, 1.0f}));
    EXPECT_EQ(values[Parameters::sync], (std::set{0.0f, 1.0f}));
    EXPECT_EQ(values[Parameters::midi], std::set{0.0f});
    EXPECT_EQ(values[Parameters::legacyMode], std::set{0.0f});
    EXPECT_GE(*values[Parameters::mix].begin(), 0.7f);
    EXPECT_GE(*values[Parameters::frameRate].begin(), 0.45f);
    for (const float value : values[Parameters::pitch]) {
        const float semitones = value * 72 - 36;
        EXPECT_NEAR(semitones, std::round(semitones), 1e-4);
    }
    const AtomicPatch patch;
    for (int id = 0; id < Parameters::kCount; ++id) {
        for (const float random : {0.0f, 1.0f}) {
            const float value = randomParameterValue(patch, id, random);
            EXPECT_EQ(Parameters::clampNormalised(value), value) << id;
        }
    }
}
