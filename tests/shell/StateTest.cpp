// Chunks, bank files and the startup bank. Blocks are put together here by hand, byte for byte.
#include "state/BankFile.h"
#include "state/Bytes.h"
#include "state/Chunks.h"
#include "state/Compression.h"
#include "state/Errors.h"
#include "state/StartupBank.h"

#include "model/MidiConfig.h"
#include "model/MidiMapping.h"
#include "model/MidiRouter.h"
#include "model/PatchText.h"
#include "model/Programs.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

using namespace Bnk;
using Model::MidiConfig;
using Model::Programs;

namespace {

std::string le(std::uint32_t n) {
    return {static_cast<char>(n), static_cast<char>(n >> 8), static_cast<char>(n >> 16),
            static_cast<char>(n >> 24)};
}

std::string be(std::uint32_t n) {
    const std::string text = le(n);
    return {text.rbegin(), text.rend()};
}

std::string sized(const std::string& text) {
    return le(static_cast<std::uint32_t>(text.size())) + text;
}

std::string zlib(const std::string& content) {
    const auto length = static_cast<uLong>(content.size());
    uLongf size = compressBound(length);
    std::string result(size, '\0');
    compress(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(content.data()), length);
    result.resize(size);
    return result;
}

std::string nameOf(int number) {
    std::string name = "p";
    return name += std::to_string(number);
}

std::string patchText(int number) {
    return "MurmelonPatch: { format: 1, name: \"" + nameOf(number) + "\" }";
}

std::string texts(int count) {
    std::string content = le(static_cast<std::uint32_t>(count));
    for (int i = 0; i < count; ++i) {
        content += sized(patchText(i));
    }
    return content;
}

constexpr std::uint32_t kBank = 0x714D793B;
constexpr std::uint32_t kOldBank = 0x714D7939;
constexpr std::uint32_t kProgram = 0x8293048A;
constexpr std::uint32_t kUnexamined = 0xDEADBEEF;
const std::string kHostState(28, '?');
const std::string kMidi = "MurmelonMidiConfig: { programChanges: true, inputChannel: 3, pitchBendRange: 2, "
                          "pitchBendHeldOnly: false, masterTuning: 432, programKeysEnabled: false, "
                          "programKeysBaseNote: 48 }";

std::string chunk(std::uint32_t magic, const std::string& content) {
    return le(magic) + le(kUnexamined) + "mMkB" + le(kUnexamined) +
           le(static_cast<std::uint32_t>(content.size())) + zlib(content);
}

std::string bankChunk(int count) {
    return chunk(kBank, texts(count) + kHostState + sized(kMidi));
}

std::string errorOf(const std::function<void()>& action) {
    try {
        action();
        return "none";
    } catch (const std::exception& error) {
        return error.what();
    }
}

std::string bankError(const std::string& data) {
    Programs programs;
    MidiConfig config;
    return errorOf([&] { readBankChunk(data, programs, config); });
}

std::string programError(const std::string& data) {
    Programs programs;
    return errorOf([&] { readProgramChunk(data, programs); });
}

const std::string kEnd = "End of file error";
const std::string kVersion = "Invalid data format (unsupported version?)";

} // namespace

TEST(BankChunk, fillsAsManySlotsAsItHasTexts) {
    for (const int count : {0, 1, 10, 16, 20}) {
        Programs programs;
        for (int i = 0; i < Programs::kCount; ++i) {
            programs[i].setName("old");
        }
        MidiConfig config;
        config.programKeysEnabled = true;
        readBankChunk(bankChunk(count), programs, config);
        for (int i = 0; i < Programs::kCount; ++i) {
            EXPECT_EQ(programs[i].name(), i < count ? nameOf(i) : "old");
        }
        EXPECT_EQ(config.masterTuning, 432);
        EXPECT_EQ(config.inputChannel, 2);
        EXPECT_FALSE(config.programKeysEnabled);
    }
}

TEST(BankChunk, olderOnesResetTheMidiConfiguration) {
    for (const std::uint32_t magic : {kOldBank, kOldBank + 1}) {
        Programs programs;
        MidiConfig config;
        config.inputChannel = 5;
        readBankChunk(chunk(magic, texts(2) + kHostState), programs, config);
        EXPECT_EQ(programs[1].name(), "p1");
        EXPECT_EQ(config, MidiConfig());
    }
}

TEST(BankChunk, aTextWithoutMidiConfigurationChangesNone) {
    Programs programs;
    MidiConfig config;
    config.inputChannel = 5;
    readBankChunk(chunk(kBank, texts(1) + kHostState + sized("Other: 1")), programs, config);
    EXPECT_EQ(config.inputChannel, 5);
}

TEST(BankChunk, isRefusedWhenItIsNotWell) {
    const std::string good = bankChunk(2);
    const std::string header = good.substr(0, 16);
    const std::string content = texts(2) + kHostState + sized(kMidi);
    std::string foreign = good;
    foreign[8] = 'n';
    std::string damaged = good;
    damaged[40] = static_cast<char>(damaged[40] ^ 0x55);
    const auto withLength = [&](std::size_t length) {
        return header + le(static_cast<std::uint32_t>(length)) + zlib(content);
    };
    struct Row {
        std::string data;
        std::string error;
    };
    const Row rows[] = {
        {good, "none"},
        {good + "padding of some host", "none"},
        {"", kEnd},
        {good.substr(0, 3), kEnd},
        {good.substr(0, 4), kEnd},
        {good.substr(0, 11), kEnd},
        {good.substr(0, 19), kEnd},
        {good.substr(0, 20), kEnd},
        {good.substr(0, good.size() - 1), kEnd},
        {le(kBank + 1), kVersion},
        {chunk(kProgram, texts(1)), kVersion},
        {le(0x71236B56), "Invalid data format (unsupported version)"},
        {le(0x19B30192), kVersion},
        {foreign, "Invalid data format (invalid four char id)"},
        {withLength(3), "Invalid data format (insane inflated length)"},
        {withLength(0x1400001), "Invalid data format (insane inflated length)"},
        {withLength(0xFFFFFFFF), "Invalid data format (insane inflated length)"},
        {withLength(0x1400000), "Invalid data format (inflated data is too short)"},
        {withLength(content.size() + 1), "Invalid data format (inflated data is too short)"},
        {withLength(content.size() - 1), "Invalid data format (inflated data is too long)"},
        {damaged, "Invalid data format (corrupt compressed data)"},
        {chunk(kBank, texts(2) + kHostState), kEnd},
        {chunk(kOldBank, texts(2) + kHostState.substr(1)), kEnd},
        {chunk(kOldBank, le(3) + texts(2).substr(4) + kHostState), kEnd},
        {chunk(kOldBank, le(1) + le(0xFFFFFFFF) + kHostState), kEnd},
        {chunk(kOldBank, le(1) + sized("MurmelonPatch: { format: 2 }") + kHostState),
         "Patch format is too new"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(bankError(row.data), row.error) << &row - rows;
    }
}

TEST(BankChunk, inflatesUpToTheLimitAndNotBeyond) {
    std::string content = texts(1) + kHostState;
    content.resize(0x1400000, '\0');
    EXPECT_EQ(bankError(chunk(kOldBank, content)), "none");
    content += '\0';
    EXPECT_EQ(bankError(chunk(kOldBank, content)), "Invalid data format (insane inflated length)");
    // A stream of 20 MB that claims to be small.
    const std::string lying = chunk(kOldBank, content);
    EXPECT_EQ(bankError(lying.substr(0, 16) + le(100) + lying.substr(20)),
              "Invalid data format (inflated data is too long)");
}

TEST(BankChunk, whatWasInstalledBeforeAFailureStays) {
    Programs programs;
    programs[2].setName("old");
    MidiConfig config;
    config.inputChannel = 5;
    const std::string bad = le(3) + sized(patchText(0)) + sized(patchText(1)) + sized("}");
    EXPECT_EQ(
        errorOf([&] { readBankChunk(chunk(kBank, bad + kHostState + sized(kMidi)), programs, config); }),
        "Invalid Stackbrace at line 1 column 1 (offset 0)");
    EXPECT_EQ(programs[0].name(), "p0");
    EXPECT_EQ(programs[1].name(), "p1");
    EXPECT_EQ(programs[2].name(), "old");
    EXPECT_EQ(config.inputChannel, 5);
}

TEST(BankChunk, comesBackAsItWasWritten) {
    Programs programs;
    MidiConfig config;
    config.assignments.assign(Parameters::mix, 7);
    config.sourcePath = "/a/b.kvmc";
    for (int i = 0; i < Programs::kCount; ++i) {
        programs[i].setName("program " + std::to_string(i));
        programs[i].setValue(Parameters::pitch, static_cast<float>(i) / 15);
        if (i % 2) {
            programs[i].markSaved();
        }
    }
    const std::string written = writeBankChunk(programs, config);
    EXPECT_EQ(written.substr(0, 4), le(kBank));
    EXPECT_EQ(written.substr(8, 4), "mMkB");
    Programs read;
    MidiConfig readConfig;
    readBankChunk(written, read, readConfig);
    EXPECT_EQ(readConfig, config);
    for (int i = 0; i < Programs::kCount; ++i) {
        EXPECT_EQ(Model::writePatch(read[i]), Model::writePatch(programs[i]));
    }
    EXPECT_EQ(writeBankChunk(read, readConfig), written);
}

// Under the thread sanitizer: whatever the main thread loads, the audio thread reads on.
TEST(BankChunk, isReadWhileTheAudioThreadPlays) {
    Programs programs;
    Model::MidiMapping mapping;
    std::atomic<bool> stop{false};
    std::thread audio([&] {
        Model::MidiRouter router;
        for (unsigned i = 0; !stop; ++i) {
            EXPECT_GE(programs.currentPatch().value(static_cast<int>(i % Parameters::kCount)), 0);
            const auto route = router.route(mapping, {0xC0, static_cast<std::uint8_t>(i % 16), 0});
            programs.select(std::max(route.program, 0));
            programs.currentPatch().setValue(Parameters::pitch, static_cast<float>(i % 7) / 7);
        }
    });
    MidiConfig config;
    const std::string good = bankChunk(16);
    for (int i = 0; i < 50; ++i) {
        readBankChunk(good, programs, config);
        mapping.publish(config);
        readProgramChunk(writeProgramChunk(programs.currentPatch()), programs);
        writeBankChunk(programs, config);
        programs.select(i % Programs::kCount);
    }
    stop = true;
    audio.join();
}

TEST(ProgramChunk, goesToTheCurrentProgram) {
    Programs programs;
    programs.select(5);
    readProgramChunk(chunk(kProgram, sized(patchText(9))), programs);
    EXPECT_EQ(programs[5].name(), "p9");
    EXPECT_EQ(programs[0].name(), "");
    const std::string written = writeProgramChunk(programs.currentPatch());
    programs.select(6);
    readProgramChunk(written, programs);
    EXPECT_EQ(Model::writePatch(programs[6]), Model::writePatch(programs[5]));
}

TEST(ProgramChunk, isRefusedWhenItIsNotWell) {
    const std::string good = chunk(kProgram, sized(patchText(0)));
    struct Row {
        std::string data;
        std::string error;
    };
    const Row rows[] = {
        {good, "none"},
        {"", kEnd},
        {le(kBank) + good.substr(4), kVersion},
        {le(kOldBank) + good.substr(4), kVersion},
        {le(0x71236B56), kVersion},
        {le(0x19B30192), "Invalid data format (unsupported version)"},
        {le(0x19B30193) + "more", "Invalid data format (unsupported version)"},
        {chunk(kProgram, le(5) + "four"), kEnd},
        {chunk(kProgram, sized("text")), "Invalid data format"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(programError(row.data), row.error) << &row - rows;
    }
}

TEST(BankFile, holdsAChunk) {
    const std::string head = "CcnK";
    const auto file = [&](std::uint32_t byteSize, const std::string& magic, std::uint32_t version,
                          const std::string& id, std::uint32_t chunkSize) {
        return head + be(byteSize) + magic + be(version) + id + be(kUnexamined) + be(kUnexamined) +
               std::string(128, '?') + be(chunkSize) + "chunk";
    };
    const std::string format = "Invalid format of FXB data";
    const std::string end = "Unexpected end of file in FXB data";
    struct Row {
        std::string data;
        std::string result;
    };
    const Row rows[] = {
        {file(157, "FBCh", 1, "BkMm", 5), "chunk"},
        {file(157, "FBCh", 2, "BkMm", 5), "chunk"},
        {file(0, "FBCh", 2, "BkMm", 3), "chu"},
        {file(158, "FBCh", 2, "BkMm", 5), format},
        {file(0xFFFFFFFF, "FBCh", 2, "BkMm", 5), format},
        {file(157, "FxBk", 1, "BkMm", 5), format},
        {file(157, "FBCh", 0, "BkMm", 5), format},
        {file(157, "FBCh", 3, "BkMm", 5), format},
        {file(157, "FBCh", 1, "BkMn", 5), format},
        {"ccnK" + file(157, "FBCh", 1, "BkMm", 5).substr(4), format},
        {"", format},
        {file(0, "FBCh", 1, "BkMm", 5).substr(0, 19), format},
        {file(0, "FBCh", 1, "BkMm", 5).substr(0, 20), end},
        {file(0, "FBCh", 1, "BkMm", 5).substr(0, 159), end},
        {file(157, "FBCh", 1, "BkMm", 6), end},
        {file(157, "FBCh", 1, "BkMm", 0xFFFFFFFF), end},
    };
    for (const Row& row : rows) {
        std::string result;
        const std::string error = errorOf([&] { result = chunkOfBankFile(row.data); });
        EXPECT_EQ(error == "none" ? result : error, row.result) << &row - rows;
    }
    EXPECT_EQ(chunkOfBankFile(bankFileOf("content")), "content");
    const std::string factory = bankFileOf("content", {1, 10});
    EXPECT_EQ(factory.substr(0, 8), "CcnK" + be(152 + 7));
    EXPECT_EQ(factory.substr(12, 16), be(1) + "BkMm" + be(1) + be(10));
    EXPECT_EQ(factory.substr(28, 128), std::string(128, '\0'));
}

TEST(StartupBank, loadsTextsAndTheCurrentProgram) {
    const auto entry = [](std::uint32_t magic, std::uint32_t tag, std::uint32_t current, int count) {
        const std::string content =
            le(tag) + le(static_cast<std::uint32_t>(count)) + le(current) + texts(count).substr(4);
        return le(magic) + le(static_cast<std::uint32_t>(content.size())) + zlib(content);
    };
    constexpr std::uint32_t kMagic = 0xA5B65191;
    struct Row {
        std::string data;
        bool loads;
        int current;
    };
    const Row rows[] = {
        {entry(kMagic, 1, 15, 16), true, 15},        {entry(kMagic, 1, 16, 3), true, 4},
        {entry(kMagic, 1, 0xFFFFFFFF, 20), true, 4}, {entry(kMagic, 2, 15, 16), false, 4},
        {entry(kMagic + 1, 1, 15, 16), false, 4},
    };
    for (const Row& row : rows) {
        Programs programs;
        programs.select(4);
        EXPECT_EQ(readStartupBank(row.data, programs), row.loads);
        EXPECT_EQ(programs.current(), row.current);
        EXPECT_EQ(programs[0].name(), row.loads ? "p0" : "");
    }
    Programs programs;
    EXPECT_EQ(errorOf([&] { readStartupBank(le(kMagic) + le(3), programs); }),
              "Invalid data format (insane inflated length)");
    EXPECT_EQ(errorOf([&] { readStartupBank("abc", programs); }), kEnd);
    programs[3].setName("three");
    programs.select(3);
    Programs read;
    EXPECT_TRUE(readStartupBank(writeStartupBank(programs), read));
    EXPECT_EQ(read.currentPatch().name(), "three");
}
