// Sounds played through the plug-in itself, and heard again by the frame analysis.
#include "CommandRun.h"
#include "TestSound.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <sstream>

using TestSound::samplesOf;

namespace {

constexpr int kRate = 44100;

class EffectRenderTest : public CommandRun::CommandTest {
protected:
    void SetUp() override {
        CommandTest::SetUp();
        write("vowel.wav", TestSound::wav(kRate, 1, TestSound::vowel(kRate, 110, kRate)));
    }

    std::vector<float> render(std::vector<std::string> options) {
        options.insert(options.begin(), {"render", "vowel.wav", "out.wav"});
        const auto done = run(options);
        EXPECT_EQ(done.errors, "") << testing::PrintToString(options);
        return samplesOf(read("out.wav"));
    }

    // Of the last rendering, in octaves from C3: the middle one of its voiced frames' pitches.
    double pitchHeard() {
        std::istringstream table(run({"analyze", "out.wav"}).output);
        std::string line;
        std::getline(table, line);
        std::vector<double> pitches;
        while (std::getline(table, line)) {
            double time = 0;
            double silent = 0;
            double lag = 0;
            double pitch = 0;
            double unvoiced = 0;
            std::sscanf(line.c_str(), "%lf,%lf,%lf,%lf,%lf", &time, &silent, &lag, &pitch, &unvoiced);
            if (silent == 0 && unvoiced < 0.5) {
                pitches.push_back(pitch);
            }
        }
        if (pitches.empty()) {
            return NAN;
        }
        std::ranges::nth_element(pitches, pitches.begin() + static_cast<std::ptrdiff_t>(pitches.size() / 2));
        return pitches[pitches.size() / 2];
    }
};

} // namespace

TEST_F(EffectRenderTest, soundsTheSameEveryTimeAndWhateverTheBlock) {
    const auto once = render({});
    EXPECT_EQ(once.size(), 2u * kRate);
    EXPECT_GT(std::ranges::max(once), 0.01f);
    for (const char* block : {"512", "1", "37", "4096"}) {
        EXPECT_EQ(render({"--block", block}), once) << block;
    }
}

TEST_F(EffectRenderTest, takesTheSameSettingInManyWays) {
    write("low", "MurmelonPatch: { format: 1, parameters: { pitch: \"-12 sm\", sampleRate: \"11 kHz\" } }");
    write("high", "MurmelonPatch: { format: 1, parameters: { pitch: \"12 sm\" } }");
    ASSERT_EQ(run({"bank", "--make", "b.fxb", "high", "low"}).status, 0);
    const auto low = render({"--param", "pitch=-12 sm", "--param", "sampleRate=11 kHz"});
    EXPECT_NE(low, render({}));
    EXPECT_EQ(render({"--param", "pitch=-12", "--param", "sampleRate:=0.3333"}), low);
    EXPECT_EQ(render({"--patch", "low"}), low);
    EXPECT_EQ(render({"--bank", "b.fxb", "--program", "2"}), low);
    EXPECT_EQ(render({"--bank", "b.fxb", "--program", "1", "--patch", "low"}), low);
    EXPECT_EQ(render({"--bank", "b.fxb", "--param", "pitch=-12", "--param", "sampleRate=11"}), low);
    EXPECT_EQ(render({"--automate", "pitch=0:0.33333334", "--param", "sampleRate=11"}), low);
    EXPECT_EQ(run({"render", "vowel.wav", "no.wav", "--param", "sync=maybe"}).errors,
              "error: Invalid value for sync: maybe\n");
}

TEST_F(EffectRenderTest, singsThePitchItIsGiven) {
    // A note of two seconds: C4, an octave above the analysis' zero.
    write("c4.mid",
          std::string("MThd\0\0\0\6\0\0\0\1\1\xE0MTrk\0\0\0\x0D\0\x90\x48\x64\x8F\0\x80\x48\0\0\xFF\x2F\0",
                      35));
    const double vowel = std::log2(110 / 261.6255653);
    struct Case {
        std::vector<std::string> options;
        double octaves;
    };
    const Case cases[] = {
        {{}, vowel},
        {{"--param", "pitch=-7 sm"}, vowel - 7 / 12.0},
        {{"--param", "tracking=0 %"}, 0},
        {{"--param", "tracking=0 %", "--param", "midi=On", "--midi", "c4.mid"}, 1},
    };
    for (const Case& c : cases) {
        render(c.options);
        EXPECT_NEAR(1200 * pitchHeard(), 1200 * c.octaves, 5) << testing::PrintToString(c.options);
    }
    EXPECT_THAT(render({"--param", "midi=On"}),
                testing::Each(testing::FloatNear(0, 1e-4f))); // no key is held
}

TEST_F(EffectRenderTest, alignsTheDrySoundWithItsInput) {
    const auto in = TestSound::vowel(kRate, 110, kRate);
    for (const char* step : {"8", "11", "22", "44 -> 48"}) {
        const auto out =
            render({"--param", "mix=0 %", "--compensate", "--param", std::string("sampleRate=") + step});
        ASSERT_EQ(out.size(), 2 * in.size());
        for (std::size_t i = 0; i < in.size(); ++i) {
            ASSERT_EQ(out[2 * i], in[i]) << step << " at " << i;
        }
    }
}

TEST_F(EffectRenderTest, keepsFramesInStepWithTheTempo) {
    const auto synced = [&](const char* tempo) {
        return render({"--param", "sync=On", "--param", "frameRate=1/32", "--tempo", tempo});
    };
    const auto sixty = synced("60");
    EXPECT_NE(synced("120"), sixty);
    EXPECT_EQ(synced("60"), sixty);
    EXPECT_EQ(synced("120"), render({"--param", "sync=On", "--param", "frameRate=1/16", "--tempo", "240"}));
}
