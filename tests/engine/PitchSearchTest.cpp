#include "engine/PitchSearch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace Engine;

namespace {

struct Peak {
    int lag;
    float prev, peak, next;
};

// A correlation that is above zero up to lag 4 and -0.2 from there, with these three values around some lags.
std::vector<float> correlation(int length, const std::vector<Peak>& peaks) {
    std::vector<float> c(static_cast<std::size_t>(length), -0.2f);
    for (std::size_t i = 0; i < 5 && i < c.size(); ++i) {
        c[i] = 1 - 0.2f * static_cast<float>(i);
    }
    for (const Peak& p : peaks) {
        float* const at = &c[static_cast<std::size_t>(p.lag)];
        at[-1] = p.prev;
        at[0] = p.peak;
        at[1] = p.next;
    }
    return c;
}

} // namespace

TEST(PitchSearch, findsTheBestPeak) {
    struct Row {
        const char* name;
        std::vector<Peak> peaks;
        float expectedLag;
        double lag;
        double height;
    };
    const Row rows[] = {
        {"symmetric", {{20, 0.3f, 0.8f, 0.3f}}, 0, 20, 0.8},
        // The offset is the neighbours' difference over twice the drop to the lower one: (0.2 - 0.6) / (2 *
        // 0.6).
        {"leans to the shorter lag", {{20, 0.6f, 0.8f, 0.2f}}, 0, 20 - 1.0 / 3, 1.0},
        {"leans to the longer lag", {{20, 0.2f, 0.8f, 0.6f}}, 0, 20 + 1.0 / 3, 1.0},
        {"flat to the right of the peak", {{20, 0.8f - 4e-6f, 0.8f, 0.8f - 8e-6f}}, 0, 20, 0.8},
        {"flat to the left of the peak", {{20, 0.8f - 8e-6f, 0.8f, 0.8f - 4e-6f}}, 0, 20, 0.8},
        {"the higher of two",
         {{20, 0.1f, 0.5f, 0.1f}, {40, 0.1f, 0.6f, 0.1f}, {60, 0.1f, 0.4f, 0.1f}},
         0,
         40,
         0.6},
        {"steepness counts", {{20, 0.1f, 0.5f, 0.4f}, {40, 0.1f, 0.6f, 0.1f}}, 0, 20.375, 0.65},
        {"of equals the longer", {{20, 0.1f, 0.5f, 0.1f}, {40, 0.1f, 0.5f, 0.1f}}, 0, 40, 0.5},
        {"the expected lag wins over a higher peak",
         {{20, 0.1f, 0.5f, 0.1f}, {81, 0.1f, 0.55f, 0.1f}},
         20,
         20,
         0.5},
        {"but not over a much higher one", {{20, 0.1f, 0.5f, 0.1f}, {81, 0.1f, 0.9f, 0.1f}}, 20, 81, 0.9},
        {"a plateau is no peak", {{20, 0.5f, 0.5f, 0.1f}}, 0, 5, 0},
        {"too small", {{20, 0, 1e-5f, 0}}, 0, 5, 0},
        {"just high enough", {{20, 0, 1.1e-5f, 0}}, 0, 20, 1.1e-5},
        {"nothing", {}, 0, 5, 0},
        {"at the last place searched", {{98, 0.1f, 0.5f, 0.1f}}, 0, 98, 0.5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const PitchEstimate found = searchPitch(correlation(100, row.peaks), 2, row.expectedLag);
        EXPECT_NEAR(found.lag, row.lag, 1e-5 * row.lag);
        EXPECT_NEAR(found.peak, row.height, 3e-6);
    }
}

// Every place of a peak, since four lags are looked at in one step.
TEST(PitchSearch, missesNoLag) {
    for (int length = 9; length < 20; ++length) {
        for (int lag = 7; lag < length - 1; ++lag) {
            const auto c = correlation(length, {{lag, 0.1f, 0.5f, 0.1f}});
            EXPECT_EQ(searchPitch(c, 2, 0).lag, lag) << length;
        }
    }
}

TEST(PitchSearch, skipsTheLobeAroundLagZero) {
    const auto inLobe = correlation(100, {{3, 0.1f, 0.9f, 0.1f}, {20, 0.1f, 0.5f, 0.1f}});
    EXPECT_EQ(searchPitch(inLobe, 2, 0).lag, 20);
    EXPECT_EQ(searchPitch(inLobe, 7, 0).lag, 20) << "below zero where the search starts";
    const std::vector<float> positive(100, 0.5f);
    EXPECT_EQ(searchPitch(positive, 2, 0).lag, 99);
    EXPECT_EQ(searchPitch(positive, 2, 0).peak, 0);
    EXPECT_EQ(searchPitch(std::vector<float>{1}, 0, 0).lag, 0) << "one lag alone";
}

TEST(PitchSearch, unvoicedAmountIsScaledAndClamped) {
    struct Row {
        float peak, energy, scale, amount;
    };
    for (const auto [peak, energy, scale, amount] :
         {Row{0, 2, 1.2f, 1}, Row{1, 2, 1.2f, 0.6f}, Row{2, 2, 1.2f, 0}, Row{2.5f, 2, 1.2f, 0}}) {
        EXPECT_FLOAT_EQ(unvoicedAmount(peak, energy, scale), amount) << peak;
    }
}
