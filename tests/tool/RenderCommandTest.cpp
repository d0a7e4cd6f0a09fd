// What `render` does to a plug-in, told by one that writes it down (ProbePlugin.cpp), and to its sound.
#include "CommandRun.h"
#include "TestSound.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <sstream>

using TestSound::samplesOf;
using TestSound::wav;
using namespace std::string_literals;

namespace {

constexpr int kRate = 48000;
constexpr std::size_t kProbeDelay = 100; // samples

std::vector<std::string> linesOf(const std::string& text, const std::string& beginning = {}) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with(beginning)) {
            lines.push_back(line);
        }
    }
    return lines;
}

std::vector<float> mono(const std::vector<float>& pairs) {
    std::vector<float> left;
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        left.push_back(pairs[i]);
    }
    return left;
}

std::string chunk(const std::string& type, const std::string& content) {
    return type + std::string(3, '\0') + static_cast<char>(content.size()) + content;
}

std::string midiFile(const std::string& division, const std::vector<std::string>& tracks) {
    std::string file = chunk("MThd", std::string("\0\1\0", 3) + static_cast<char>(tracks.size()) + division);
    for (const std::string& track : tracks) {
        file += chunk("MTrk", track);
    }
    return file;
}

std::string claimingOneTrack(std::string file) {
    file[11] = '\1';
    return file;
}

// A literal's characters, those of no value included.
template <std::size_t N>
std::string bytes(const char (&text)[N]) {
    return {text, N - 1};
}

const std::string kQuarterOf480 = "\1\xE0";

class RenderCommandTest : public CommandRun::CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        CommandRun::setVariable("PROBE_LOG", folder_ / "log");
    }

    CommandRun::Result probe(std::vector<std::string> options, const std::string& out = "out.wav") {
        options.insert(options.begin(), {"render", "in.wav", out, "--plugin", MURMELON_PROBE});
        return run(options);
    }
};

} // namespace

TEST_F(RenderCommandTest, speaksToThePluginAsHostsDo) {
    write("in.wav", wav(kRate, 2, std::vector<float>(2 * 1000)));
    write("one", "MurmelonPatch: { format: 1 }");
    ASSERT_EQ(run({"bank", "--make", "b.fxb", "one"}).status, 0);
    const auto done = probe({"--param", "pitch=-12 sm", "--param", "mix:=0.25", "--patch", "one", "--program",
                             "16", "--bank", "b.fxb", "--block", "600", "--tempo", "90"});
    EXPECT_EQ(done.errors, "");
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(read("log"), "open\nrate 48000\nblock 600\n"
                           "chunk of a bank\nprogram 15\nchunk of a program\n"
                           "parameter 0 \"-12 sm\"\nparameter 8 0.25\n"
                           "resume\n"
                           "play 0: tempo 90 beat 0 600 samples\n"
                           "play 600: tempo 90 beat 0.01875 400 samples\n"
                           "suspend\nclose\n");
    probe({"--block", "600"});
    EXPECT_THAT(linesOf(read("log"), "play"),
                testing::ElementsAre("play 0: 600 samples", "play 600: 400 samples"));
}

TEST_F(RenderCommandTest, isAsLongAsTheInputAndItsTail) {
    const auto in = TestSound::noise(2 * 1000);
    write("in.wav", wav(kRate, 2, in));
    const auto shifted = [&](std::size_t by, std::size_t length) {
        std::vector<float> samples(2 * by);
        samples.insert(samples.end(), in.begin(), in.end());
        samples.resize(2 * length);
        return samples;
    };
    struct Case {
        std::vector<std::string> options;
        std::vector<float> samples;
    };
    const Case cases[] = {
        {{}, shifted(kProbeDelay, 1000)},
        {{"--tail", "0.01"}, shifted(kProbeDelay, 1480)},
        {{"--compensate"}, in},
        {{"--compensate", "--tail", "0.5"}, shifted(0, 25000)},
    };
    for (const Case& c : cases) {
        for (const char* block : {"1", "512", "5000"}) {
            auto options = c.options;
            options.insert(options.end(), {"--block", block});
            EXPECT_EQ(probe(options).errors, "");
            EXPECT_EQ(samplesOf(read("out.wav")), c.samples) << testing::PrintToString(options);
        }
    }
}

TEST_F(RenderCommandTest, handsMonoToBothChannels) {
    const auto in = TestSound::noise(300);
    write("in.wav", wav(8000, 1, in));
    probe({"--compensate"});
    const auto out = samplesOf(read("out.wav"));
    ASSERT_EQ(out.size(), 600u);
    for (std::size_t i = 0; i < in.size(); ++i) {
        EXPECT_EQ(out[2 * i], in[i]);
        EXPECT_EQ(out[2 * i + 1], in[i]);
    }
    EXPECT_EQ(linesOf(read("log"), "rate"), std::vector<std::string>{"rate 8000"});
}

TEST_F(RenderCommandTest, writesFlacThatClips) {
    write("in.wav", wav(kRate, 1, {0.5f, 2.0f, -3.0f, -0.25f}));
    EXPECT_EQ(probe({"--compensate"}, "out.FLAC").errors, "");
    EXPECT_EQ(read("out.FLAC").substr(0, 4), "fLaC");
    EXPECT_EQ(run({"render", "out.FLAC", "again.wav", "--compensate", "--plugin", MURMELON_PROBE}).status, 0);
    const float most = 1 - 1.0f / (1 << 23);
    EXPECT_EQ(mono(samplesOf(read("again.wav"))), (std::vector<float>{0.5f, most, -1, -0.25f}));
}

TEST_F(RenderCommandTest, playsMidiAtItsSamplesWhateverTheBlock) {
    write("in.wav", wav(kRate, 1, std::vector<float>(kRate)));
    // A note on the first sample, a chord, running status, a tempo of 100 from tick 480 on, program change,
    // a controller of another channel, and a note behind the end of the sound.
    write("song.mid", midiFile(kQuarterOf480, {bytes("\0\x90\x3C\x64"
                                                     "\x01\x90\x40\x65"
                                                     "\0\x43\x66"
                                                     "\x83\x5F\xFF\x51\x03\x09\x27\xC0"
                                                     "\0\xC0\x05"
                                                     "\x30\xE1\x01\x7F"
                                                     "\x87\x40\x80\x3C\0")}));
    const std::vector<std::string> expected = {
        "midi 0: 90 3c 64",     "midi 50: 90 40 65",    "midi 50: 90 43 66",
        "midi 24000: c0 05 00", "midi 26880: e1 01 7f", // 480 and 48 ticks later, at 500 and 600 ms a quarter
    };
    for (const char* block : {"1", "50", "51", "512", "48000"}) {
        EXPECT_EQ(probe({"--midi", "song.mid", "--block", block}).errors, "");
        EXPECT_EQ(linesOf(read("log"), "midi"), expected) << block;
    }
}

TEST_F(RenderCommandTest, readsMidiFilesOfAllKinds) {
    write("in.wav", wav(1000, 1, std::vector<float>(3000)));
    const std::string damaged = "the MIDI file is damaged";
    const std::string cutOff = "the MIDI file is cut off";
    const std::string note = bytes("\0\x90\x3C\x64");
    const std::string late = bytes("\x64\x90\x3C\x64");             // a hundred ticks later
    const std::string slower = bytes("\x64\xFF\x51\3\x0F\x42\x40"); // to a second a quarter
    const std::string end = bytes("\0\xFF\x2F\0");
    const std::string whole = midiFile(kQuarterOf480, {note + end});
    struct Case {
        const char* name;
        std::string file;
        std::vector<std::string> messages;
        std::string error = {};
    };
    const Case cases[] = {
        {"tempo of another track",
         midiFile("\0d"s, {slower + end, late + late + end}),
         {"midi 500: 90 3c 64", "midi 1500: 90 3c 64"}},
        {"tracks in step",
         midiFile("\0d"s, {late + end, note + late + end}),
         {"midi 0: 90 3c 64", "midi 500: 90 3c 64", "midi 500: 90 3c 64"}},
        {"frames", midiFile("\xE7\x28", {late + end}), {"midi 100: 90 3c 64"}}, // 25 a second of 40 ticks
        {"frames of television",
         midiFile("\xE3\x0A", {late + late + end}),
         {"midi 334: 90 3c 64", "midi 667: 90 3c 64"}},
        {"system exclusive",
         midiFile(kQuarterOf480, {bytes("\0\xF0\2\1\xF7") + note + end}),
         {"midi 0: 90 3c 64"}},
        {"behind the end", midiFile(kQuarterOf480, {end + note}), {}},
        {"no end", midiFile(kQuarterOf480, {note}), {"midi 0: 90 3c 64"}},
        {"foreign chunk",
         claimingOneTrack(midiFile(kQuarterOf480, {})) + chunk("Text", "hello") + chunk("MTrk", note),
         {"midi 0: 90 3c 64"}},
        {"no tempo at all",
         midiFile("\0d"s, {bytes("\0\xFF\x51\3\0\0\0") + late + end}),
         {"midi 0: 90 3c 64"}},
        {"empty", "", {}, "it is no standard MIDI file"},
        {"cut in a track", whole.substr(0, whole.size() - 5), {}, cutOff},
        {"cut in a message", midiFile(kQuarterOf480, {bytes("\0\x90\x3C")}), {}, cutOff},
        {"a track is missing", claimingOneTrack(midiFile(kQuarterOf480, {})), {}, cutOff},
        {"no status", midiFile(kQuarterOf480, {bytes("\0\x3C\x64")}), {}, damaged},
        {"no status behind a meta event",
         midiFile(kQuarterOf480, {note + bytes("\0\xFF\1\0\0\x3C\0")}),
         {},
         damaged},
        {"status for data", midiFile(kQuarterOf480, {bytes("\0\x90\x3C\x90")}), {}, damaged},
        {"endless delta", midiFile(kQuarterOf480, {"\x80\x80\x80\x80\x01"}), {}, damaged},
        {"no ticks", midiFile("\0\0"s, {note}), {}, damaged},
    };
    for (const Case& c : cases) {
        write("song.mid", c.file);
        const auto done = probe({"--midi", "song.mid"});
        EXPECT_EQ(done.errors, c.error.empty() ? "" : "error: Could not read song.mid: " + c.error + "\n")
            << c.name;
        if (c.error.empty()) {
            EXPECT_EQ(linesOf(read("log"), "midi"), c.messages) << c.name;
        }
    }
}

TEST_F(RenderCommandTest, automatesOncePerBlock) {
    write("in.wav", wav(1000, 1, std::vector<float>(1000)));
    probe(
        {"--block", "250", "--automate", "tracking=0.25:0.5,0.75:1", "--automate", "pitch=0:1,0.5:1,0.5:0"});
    // Once before sound flows, so that it does not begin with a glide.
    EXPECT_THAT(linesOf(read("log"), "parameter 1"),
                testing::ElementsAre("parameter 1 0.5", "parameter 1 0.5", "parameter 1 0.5",
                                     "parameter 1 0.75", "parameter 1 1"));
    EXPECT_THAT(linesOf(read("log"), "parameter 0"),
                testing::ElementsAre("parameter 0 1", "parameter 0 1", "parameter 0 1", "parameter 0 0",
                                     "parameter 0 0"));
}

TEST_F(RenderCommandTest, failsWithoutLeavingOrHarmingAnything) {
    write("in.wav", wav(kRate, 1, {1, 2, 3}));
    write("text", "This is no sound, no song, no library.");
    write("out.wav", "precious");
    const std::string midiError = "error: Could not read text: it is no standard MIDI file\n";
    const std::string pointError = "error: Invalid break point (SECONDS:0..1, rising): ";
    struct Case {
        std::vector<std::string> options;
        std::string errors;
    };
    const Case cases[] = {
        {{"--midi", "text"}, midiError},
        {{"--midi", "none.mid"}, "error: Could not read none.mid: No such file or directory\n"},
        {{"--bank", "text"}, "error: Invalid format of FXB data\n"},
        {{"--param", "speed=1"}, "error: Unknown parameter: speed\n"},
        {{"--param", "pitch=nonsense"}, "error: Invalid value for pitch: nonsense\n"},
        {{"--automate", "speed=0:0"}, "error: Unknown parameter: speed\n"},
        {{"--automate", "pitch"}, "error: Invalid automation (NAME=TIME:VALUE,...): pitch\n"},
        {{"--automate", "pitch="}, pointError + "\n"},
        {{"--automate", "pitch=0:1,1"}, pointError + "1\n"},
        {{"--automate", "pitch=1:0,0:1"}, pointError + "0:1\n"},
        {{"--automate", "pitch=0:1.1"}, pointError + "0:1.1\n"},
        {{"--automate", "pitch=0:1,"}, pointError + "\n"},
        {{"--automate", "pitch=-1:1"}, pointError + "-1:1\n"},
    };
    for (const Case& c : cases) {
        const auto failed = probe(c.options);
        EXPECT_EQ(failed.status, 1);
        EXPECT_EQ(failed.errors, c.errors);
    }
    EXPECT_EQ(probe({}, "out.mp3").errors,
              "error: Could not write out.mp3: the name must end in .wav or .flac\n");
    EXPECT_THAT(probe({}, "no/such.wav").errors, testing::StartsWith("error: Could not write no/such.wav: "));
    EXPECT_THAT(run({"render", "in.wav", "out.wav", "--plugin", "text"}).errors,
                testing::StartsWith("error: Could not load "));
    EXPECT_EQ(run({"render", "text", "out.wav", "--plugin", MURMELON_PROBE}).errors,
              "error: Could not read text: Format not recognised.\n");
    EXPECT_EQ(read("out.wav"), "precious");
    std::set<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        left.insert(entry.path().filename().string());
    }
    EXPECT_THAT(left, testing::ElementsAre(".errors", ".input", ".output", "in.wav", "log", "out.wav", "text"));
    for (const std::vector<std::string>& wrong : {std::vector<std::string>{"--block", "0"},
                                                  {"--tempo", "0"},
                                                  {"--tempo", "fast"},
                                                  {"--tempo", "nan"},
                                                  {"--tail", "-1"},
                                                  {"--tail", "nan"},
                                                  {"--program", "0"},
                                                  {"--param"},
                                                  {"--loud"}}) {
        EXPECT_EQ(probe(wrong).status, 2) << testing::PrintToString(wrong);
    }
    EXPECT_EQ(run({"render", "in.wav"}).status, 2);
}
