#include "parameters/ParameterText.h"

#include "parameters/ParameterTable.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

using namespace Parameters;

TEST(ParameterText, showsValues) {
    struct Row {
        int id;
        float value;
        bool sync;
        std::string_view display;
        std::string_view exact;
    };
    const Row rows[] = {
        {sampleRate, 0.6666667f, false, "22", "22"},
        {sampleRate, 1, false, "44 -> 48", "44 -> 48"},
        {Parameters::sync, 0.5f, false, "On", "On"},
        {midi, 0.4999f, false, "Off", "Off"},
        {frameRate, 0.9085603f, false, "60.00 Hz", "59.99999596149694 Hz"},
        {frameRate, 0, false, "0.00 Hz", "0.00000000000000 Hz"},
        {frameRate, 0.001077f, false, "0.00 Hz", "0.00000000000000 Hz"},
        {frameRate, 1, false, "80.00 Hz", "80.00000000000000 Hz"},
        {frameRate, 0, true, "Stop", "Stop"},
        {frameRate, 0.5f, true, "3/16 (1/8.)", "3/16 (1/8.)"},
        {frameRate, 1, true, "1/64", "1/64"},
        {pitch, 0.5f, false, "0.00", "0.0000000"},
        {pitch, 0, false, "-36.00", "-36.0000000"},
        {pitch, 0.49999f, false, "0.00", "-0.0007210"},
        {tracking, 0.5f, false, "100.00", "100.0000000"},
        {detune, 0, false, "0.00", "0.00000000000000"},
        {detune, 0.0078f, false, "0.00", "0.00000000000000"},
        {detune, 0.9922f, false, "1200.00", "1200.00000000000000"},
        {noiseAdjust, 0, false, "-100.00", "-100.0000000"},
        {mix, 1, false, "100.00", "100.0000000"},
        {mix, 7, false, "100.00", "100.0000000"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(valueToText(row.id, row.value, row.sync, TextForm::display), row.display);
        EXPECT_EQ(valueToText(row.id, row.value, row.sync, TextForm::exact), row.exact);
    }
}

TEST(ParameterText, joinsUnits) {
    EXPECT_EQ(appendUnit(sampleRate, "22"), "22 kHz");
    EXPECT_EQ(appendUnit(mix, "100.0000000"), "100.0000000%");
    EXPECT_EQ(appendUnit(frameRate, "60.00 Hz"), "60.00 Hz");
    EXPECT_EQ(shownText(mix, 1, false), "100.00 %");
    EXPECT_EQ(shownText(detune, 0, false), "0.00 ct");
    EXPECT_EQ(shownText(legacyMode, 0, false), "Off");
}

TEST(ParameterText, readsTypedTexts) {
    struct Row {
        int id;
        std::string_view text;
        float value;
        bool sync = false;
    };
    const Row rows[] = {
        {sampleRate, "8", 0},
        {sampleRate, "11 kHz", 1.0f / 3},
        {sampleRate, " 22KHZ ", 2.0f / 3},
        {sampleRate, "44 -> 48", 1},
        {sampleRate, "44->48 khz", 1},
        {Parameters::sync, "on", 1},
        {Parameters::sync, "OFF", 0},
        {midi, "true", 1},
        {frameRate, "80", 1},
        {frameRate, "10 hz", 0.5f},
        {frameRate, "10.0Hz", 0.5f},
        {frameRate, "0", 0},
        {frameRate, "-5", 0},
        {frameRate, "1e9", 1},
        {frameRate, "1/8T", 11.0f / 16},
        {frameRate, "1/8t", 11.0f / 16, true},
        {frameRate, "stop", 0, true},
        {frameRate, "3/16 (1/8.)", 0.5f, true},
        {frameRate, "1/8.", 0.5f, true},
        {frameRate, "3/16", 0.5f, true},
        {frameRate, "10 Hz", 0.5f, true},
        {pitch, "-12 sm", 1.0f / 3},
        {pitch, "-12", 1.0f / 3},
        {pitch, "+12SM", 2.0f / 3},
        {pitch, "99", 1},
        {pitch, "-99", 0},
        {pitch, "1.8e1", 0.75f},
        {tracking, "50%", 0.25f},
        {tracking, "50 %", 0.25f},
        {detune, "600 ct", 0.5f},
        {detune, "0 CT", 0},
        {detune, "1200", 1},
        {noiseAdjust, "-50", 0.25f},
        {mix, ".5", 0.005f},
        {mix, "100.0000000 %", 1},
    };
    for (const Row& row : rows) {
        const auto value = textToValue(row.id, row.text, row.sync);
        ASSERT_TRUE(value.has_value()) << row.text;
        EXPECT_EQ(*value, row.value) << row.text;
    }
}

TEST(ParameterText, refusesWhatIsNoValue) {
    struct Row {
        int id;
        std::string_view text;
        bool sync = false;
    };
    const Row rows[] = {
        {sampleRate, "9"},   {sampleRate, ""},   {sampleRate, "44"},     {Parameters::sync, "maybe"},
        {frameRate, "fast"}, {frameRate, "1/3"}, {frameRate, "8", true}, {pitch, ""},
        {pitch, "sm"},       {pitch, "12 sm x"}, {pitch, "0x10"},        {pitch, "nan"},
        {pitch, "inf"},      {pitch, "1.2.3"},   {pitch, "--1"},         {mix, "."},
        {mix, "1e"},         {detune, "12 sm"}};
    for (const Row& row : rows) {
        EXPECT_EQ(textToValue(row.id, row.text, row.sync), std::nullopt) << row.text;
    }
    EXPECT_EQ(textToValue(pitch, std::string(100000, '9'), false), std::nullopt);
}

// Every float in 0..1 is some host's automation value. Tries all magnitudes, not only the usual ones: a
// project must come back with the very same numbers.
TEST(ParameterText, exactFormReadsBackToTheSameFloat) {
    std::mt19937 random(1);
    const auto one = std::bit_cast<std::uint32_t>(1.0f);
    std::uniform_int_distribution<std::uint32_t> anyFloat(0, one);
    std::uniform_real_distribution<float> uniform(0, 1);
    for (const int id : {frameRate, pitch, tracking, detune, noiseAdjust, mix}) {
        for (int i = 0; i < 4000; ++i) {
            float value = i % 2 ? std::bit_cast<float>(anyFloat(random)) : uniform(random);
            value = i == 0 ? 0.0f : i == 2 ? 1.0f : i == 4 ? std::nextafter(1.0f, 0.0f) : value;
            const bool flat = (id == detune && (detuneCurve(value) == 0 || detuneCurve(value) == 1)) ||
                              (id == frameRate && freeFrameRateHz(value) == 0);
            if (flat) {
                continue;
            }
            const std::string text = appendUnit(id, valueToText(id, value, false, TextForm::exact));
            const auto back = textToValue(id, text, false);
            ASSERT_TRUE(back.has_value()) << text;
            ASSERT_EQ(std::bit_cast<std::uint32_t>(*back), std::bit_cast<std::uint32_t>(value))
                << id << " " << text;
        }
    }
}
