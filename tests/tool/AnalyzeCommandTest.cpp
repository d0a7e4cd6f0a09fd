// What `analyze` lists and draws of signals whose pitch, voicing and place are known.
#include "CommandRun.h"
#include "TestSound.h"

#include <cmath>
#include <sstream>

namespace {

constexpr int kRate = 44100;

struct Row {
    double time = 0;
    bool silent = false;
    double lag = 0;
    double pitch = 0;
    double unvoiced = 0;
    double amplitude = 0;
    double pan = 0;
    double width = 0;
    std::vector<double> coefficients;
};

std::vector<std::string> parts(const std::string& text, char separator) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        result.push_back(part);
    }
    return result;
}

std::vector<Row> rowsOf(const std::string& table) {
    std::vector<Row> rows;
    const auto lines = parts(table, '\n');
    for (std::size_t i = 1; i < lines.size(); ++i) {
        std::vector<double> numbers;
        for (const std::string& field : parts(lines[i], ',')) {
            numbers.push_back(std::stod(field));
        }
        numbers.resize(std::max<std::size_t>(numbers.size(), 8));
        rows.push_back({numbers[0],
                        numbers[1] != 0,
                        numbers[2],
                        numbers[3],
                        numbers[4],
                        numbers[5],
                        numbers[6],
                        numbers[7],
                        {numbers.begin() + 8, numbers.end()}});
    }
    return rows;
}

class AnalyzeCommandTest : public CommandRun::CommandTest {
protected:
    CommandRun::Result analyze(const std::vector<float>& samples, std::vector<std::string> options = {},
                               int channels = 1, int rate = kRate) {
        options.insert(options.begin(), {"analyze", "-"});
        return run(options, TestSound::wav(rate, channels, samples));
    }
};

} // namespace

TEST_F(AnalyzeCommandTest, findsThePitchOfAVowel) {
    for (const double hertz : {82.4, 110.0, 261.6256, 430.0}) {
        const auto rows = rowsOf(analyze(TestSound::vowel(kRate, hertz, kRate)).output);
        // A frame each sixtieth of a second, the first after half of one.
        ASSERT_EQ(rows.size(), 60u);
        for (std::size_t i = 10; i < rows.size(); ++i) {
            EXPECT_NEAR(rows[i].time, (static_cast<double>(i) + 0.5) / 60, 2.0 / 22050);
            EXPECT_FALSE(rows[i].silent);
            const double cents = 1200 * (rows[i].pitch - std::log2(hertz / 261.6255653));
            EXPECT_NEAR(cents, 0, 3) << hertz << " Hz at " << rows[i].time;
            EXPECT_LT(rows[i].unvoiced, 0.5);
            EXPECT_NEAR(rows[i].pan, 0, 1e-3);
            EXPECT_NEAR(rows[i].width, 0, 1e-3);
        }
    }
}

TEST_F(AnalyzeCommandTest, listsAColumnForEachCoefficientOfTheRate) {
    struct Case {
        const char* step;
        int hostRate;
        int coefficients; // beside the first
    };
    for (const Case& c :
         {Case{"8", kRate, 9}, Case{"11", kRate, 13}, Case{"22", kRate, 27}, Case{"44 -> 48", kRate, 55},
          Case{"44 -> 48", 96000, 60}, Case{"44 -> 48", 4000, 4}}) {
        const auto listed =
            analyze(TestSound::vowel(c.hostRate, 110, static_cast<std::size_t>(c.hostRate) / 2),
                    {"--param", std::string("sampleRate=") + c.step}, 1, c.hostRate);
        std::string header = "time,silent,lag,pitch,unvoiced,amplitude,pan,width";
        for (int k = 1; k <= c.coefficients; ++k) {
            header += ",c" + std::to_string(k);
        }
        EXPECT_EQ(parts(listed.output, '\n').at(0), header);
        for (const Row& row : rowsOf(listed.output)) {
            EXPECT_EQ(row.coefficients.size(), static_cast<std::size_t>(c.coefficients));
        }
    }
}

// Of x[n] = 1.2 x[n-1] - 0.5 x[n-2] + noise the analysis finds 1.2 and -0.5: what predicts is listed, not
// what is left. Emphasis and the filter's widening change the numbers, not their signs and order.
TEST_F(AnalyzeCommandTest, listsThePredictorNotTheErrorFilter) {
    std::vector<float> samples = TestSound::noise(8000);
    for (std::size_t i = 2; i < samples.size(); ++i) {
        samples[i] = 0.1f * samples[i] + 1.2f * samples[i - 1] - 0.5f * samples[i - 2];
    }
    const auto rows = rowsOf(analyze(samples, {"--param", "sampleRate=44 -> 48"}, 1, 8000).output);
    ASSERT_FALSE(rows.empty());
    EXPECT_NEAR(rows.back().coefficients.at(0), 1.15, 0.2);
    EXPECT_NEAR(rows.back().coefficients.at(1), -0.5, 0.2);
    EXPECT_GT(rows.back().unvoiced, 0.5);
}

TEST_F(AnalyzeCommandTest, flagsSilenceAndHoldsWhatSoundedBefore) {
    auto samples = TestSound::vowel(kRate, 220, kRate / 2);
    samples.resize(kRate);
    const auto rows = rowsOf(analyze(samples).output);
    ASSERT_EQ(rows.size(), 60u);
    EXPECT_FALSE(rows[25].silent);
    for (std::size_t i = 40; i < rows.size(); ++i) {
        EXPECT_TRUE(rows[i].silent);
        EXPECT_EQ(rows[i].amplitude, 0);
        EXPECT_EQ(rows[i].pitch, rows[39].pitch);
        EXPECT_EQ(rows[i].coefficients, rows[39].coefficients);
    }
}

TEST_F(AnalyzeCommandTest, placesStereoSounds) {
    const auto vowel = TestSound::vowel(kRate, 150, kRate / 4);
    std::vector<float> pairs;
    for (const float sample : vowel) {
        pairs.insert(pairs.end(), {0.5f * sample, sample});
    }
    const auto rows = rowsOf(analyze(pairs, {}, 2).output);
    EXPECT_NEAR(rows.back().pan, 0.5, 1e-3);
    EXPECT_NEAR(rows.back().width, 0, 1e-2);
    EXPECT_EQ(rowsOf(analyze(pairs, {"--param", "legacyMode=on"}, 2).output).back().pan, 0);
}

TEST_F(AnalyzeCommandTest, takesSettingsInTheOrderBankProgramPatchParameters) {
    write("half", "MurmelonPatch: { format: 1, parameters: { frameRate: \"30 Hz\" } }");
    write("ten", "MurmelonPatch: { format: 1, parameters: { frameRate: \"10 Hz\" } }");
    ASSERT_EQ(run({"bank", "--make", "b.fxb", "half", "ten"}).status, 0);
    struct Case {
        std::vector<std::string> options;
        std::size_t frames;
    };
    const Case cases[] = {
        {{"--param", "frameRate=80"}, 80},
        {{"--param", "frameRate:=1"}, 80},
        {{"--program", "2"}, 40}, // of the factory bank
        {{"--bank", "b.fxb"}, 30},
        {{"--program", "2", "--bank", "b.fxb"}, 10},
        {{"--patch", "half", "--program", "2", "--bank", "b.fxb"}, 30},
        {{"--param", "frameRate=20", "--patch", "half", "--bank", "b.fxb"}, 20},
        {{"--param", "frameRate=20", "--param", "frameRate=40"}, 40},
        {{"--param", "sync=On", "--param", "frameRate=1/32"}, 16}, // at 120 beats a minute
        {{"--param", "sync=On", "--param", "frameRate=Stop"}, 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(rowsOf(analyze(TestSound::vowel(kRate, 220, kRate), c.options).output).size(), c.frames)
            << testing::PrintToString(c.options);
    }
}

TEST_F(AnalyzeCommandTest, writesFilesOrStandardOutput) {
    const auto samples = TestSound::vowel(kRate, 220, kRate / 4);
    const auto listed = analyze(samples);
    EXPECT_EQ(analyze(samples, {"--csv", "-", "--plot", "a.png"}).output, listed.output);
    EXPECT_EQ(analyze(samples, {"--csv", "a.csv"}).output, "");
    EXPECT_EQ(read("a.csv"), listed.output);
    EXPECT_EQ(analyze(samples, {"--plot", "b.png"}).output, "");
    EXPECT_EQ(read("a.png"), read("b.png"));
    EXPECT_EQ(read("a.png").substr(1, 3), "PNG");
    // Whatever there is to draw, a picture comes of it.
    for (const std::vector<float>& odd :
         {std::vector<float>{1}, std::vector<float>(20000), std::vector<float>(9, 1e20f)}) {
        EXPECT_EQ(analyze(odd, {"--plot", "c.png"}, 1, 1000).status, 0);
    }
}

TEST_F(AnalyzeCommandTest, saysWhatIsWrong) {
    write("text.wav", "This is no sound.");
    write("empty.wav", TestSound::wav(kRate, 2, {}));
    write("three.wav", TestSound::wav(kRate, 3, {1, 2, 3}));
    write("good.wav", TestSound::wav(kRate, 1, {1, 2, 3}));
    struct Case {
        std::vector<std::string> arguments;
        std::string errors;
    };
    const Case cases[] = {
        {{"none.wav"}, "error: Could not read none.wav: No such file or directory\n"},
        {{"text.wav"}, "error: Could not read text.wav: Format not recognised.\n"},
        {{"empty.wav"}, "error: Could not read empty.wav: it holds no samples\n"},
        {{"three.wav"},
         "error: Could not read three.wav: it has 3 channels; the effect takes mono and stereo\n"},
        {{"good.wav", "--param", "volume=1"}, "error: Unknown parameter: volume\n"},
        {{"good.wav", "--param", "pitch"}, "error: Invalid parameter (NAME=VALUE or NAME:=NUMBER): pitch\n"},
        {{"good.wav", "--param", "pitch=high"}, "error: Invalid value for pitch: high\n"},
        {{"good.wav", "--param", "pitch:=1.5"}, "error: Invalid value for pitch: 1.5\n"},
        {{"good.wav", "--param", "mix:=nan"}, "error: Invalid value for mix: nan\n"},
        {{"good.wav", "--param", "mix:="}, "error: Invalid value for mix: \n"},
        {{"good.wav", "--patch", "text.wav"}, "error: Invalid data format\n"},
        {{"good.wav", "--bank", "text.wav"}, "error: Invalid format of FXB data\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> arguments = {"analyze"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const auto failed = run(arguments);
        EXPECT_EQ(failed.status, 1);
        EXPECT_EQ(failed.output, "");
        EXPECT_EQ(failed.errors, c.errors);
    }
    EXPECT_EQ(run({"analyze"}).status, 2);
    EXPECT_EQ(run({"analyze", "good.wav", "--program", "17"}).status, 2);
    const auto unwritable = run({"analyze", "good.wav", "--plot", "no/such.png"});
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_TRUE(unwritable.errors.starts_with("error: Could not write no/such.png: ")) << unwritable.errors;
}
