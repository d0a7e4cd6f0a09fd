// Random patches: a name of letters and values that are worth listening to.
#pragma once

#include "model/Patch.h"

#include <cstdint>
#include <string>

namespace Model {

// What the clocks say, from which a randomiser starts.
struct RandomSeed {
    std::uint32_t calendarSeconds = 0;
    std::uint32_t tickMilliseconds = 0;
    std::uint64_t performanceCounter = 0;

    static RandomSeed now();
};

class PatchRandomiser {
public:
    // `use` counts the randomisers of this process from 1, so that two within one tick of the clocks differ.
    PatchRandomiser(const RandomSeed& seed, std::uint32_t use);

    // Seeded by the clocks and the count of this process.
    PatchRandomiser();

    std::uint32_t step();

    // 6 to 22 lower-case letters.
    std::string name();

    // Gives the patch a random name, then all its parameters new values in table order, as one change.
    void randomise(Patch& patch);

private:
    std::uint32_t x_;
    std::uint32_t y_;
};

// The new value of parameter `index` for a random number from 0 to 1. Switches and steps get their own
// values; `mix` stays high enough to hear the effect; `midi` and `legacyMode`, which would silence it or take
// its colour away, are off.
float randomParameterValue(const Patch& patch, int index, float random);

} // namespace Model
