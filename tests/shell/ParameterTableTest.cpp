#include "parameters/ParameterTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Parameters;

TEST(ParameterTable, hostOrderIsAPermutationThatStartsWithPitch) {
    std::array<int, kCount> seen{};
    for (int index = 0; index < kCount; ++index) {
        const int id = kHostOrder[static_cast<std::size_t>(index)];
        ++seen.at(static_cast<std::size_t>(id));
        EXPECT_EQ(hostIndex(id), index);
    }
    EXPECT_THAT(seen, testing::Each(1));
    EXPECT_EQ(kTable[static_cast<std::size_t>(kHostOrder[0])].name, "pitch");
    EXPECT_EQ(kTable[static_cast<std::size_t>(kHostOrder[7])].name, "sampleRate");
}

TEST(ParameterTable, findsByExactName) {
    EXPECT_EQ(find("sampleRate"), 0);
    EXPECT_EQ(find("legacyMode"), 9);
    EXPECT_EQ(find("samplerate"), std::nullopt);
    EXPECT_EQ(find(""), std::nullopt);
}

TEST(ParameterTable, stepsOnBothSidesOfTheirEdges) {
    struct Row {
        float value;
        int step;
    };
    for (const auto [value, step] :
         {Row{0, 0}, Row{0.2499f, 0}, Row{0.25f, 1}, Row{1.0f / 3, 1}, Row{0.5f, 2}, Row{2.0f / 3, 2},
          Row{0.7499f, 2}, Row{0.75f, 3}, Row{1, 3}, Row{7, 3}, Row{-1, 0}}) {
        EXPECT_EQ(sampleRateStep(value), step) << value;
    }
    for (const auto [value, step] : {Row{0, 0}, Row{0.0588f, 0}, Row{0.0589f, 1}, Row{0.5f, 8},
                                     Row{0.9411f, 15}, Row{0.9412f, 16}, Row{1, 16}}) {
        EXPECT_EQ(syncDivision(value), step) << value;
    }
}

TEST(ParameterTable, divisionsCountFramesOfTheirNoteLengths) {
    // A note of 1/d holds d frames in a whole note; triplets 3/2 of that, dotted notes 2/3.
    struct Row {
        std::string_view label;
        double frames;
    };
    const Row rows[] = {{"Stop", 0},   {"1/1", 1},    {"3/4 (1/2.)", 2 / 1.5},
                        {"1/1T", 1.5}, {"1/2", 2},    {"3/8 (1/4.)", 4 / 1.5},
                        {"1/2T", 3},   {"1/4", 4},    {"3/16 (1/8.)", 8 / 1.5},
                        {"1/4T", 6},   {"1/8", 8},    {"1/8T", 12},
                        {"1/16", 16},  {"1/16T", 24}, {"1/32", 32},
                        {"1/32T", 48}, {"1/64", 64}};
    ASSERT_EQ(std::size(rows), kSyncDivisionLabels.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(kSyncDivisionLabels[i], rows[i].label);
        EXPECT_FLOAT_EQ(kFramesPerWholeNote[i], static_cast<float>(rows[i].frames)) << rows[i].label;
    }
}

TEST(ParameterTable, detuneCurveIsFlatAtItsEndsAndSymmetric) {
    EXPECT_EQ(detuneCurve(0.0078f), 0);
    EXPECT_GT(detuneCurve(0.00783f), 0);
    EXPECT_LT(detuneCurve(0.99217f), 1);
    EXPECT_EQ(detuneCurve(0.9922f), 1);
    EXPECT_DOUBLE_EQ(detuneCurve(0.5f), 0.5);
    EXPECT_NEAR(detuneCurve(0.25f) + detuneCurve(0.75f), 1.0, 1e-12);
}

TEST(ParameterTable, clampsWhatHostsMaySend) {
    EXPECT_EQ(clampNormalised(-0.1f), 0);
    EXPECT_EQ(clampNormalised(1.5f), 1);
    EXPECT_EQ(clampNormalised(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(clampNormalised(std::numeric_limits<float>::infinity()), 1);
}
