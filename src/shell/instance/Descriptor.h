// What the plug-in is, the same for all instances and whichever host interface asks.
#pragma once

#include "parameters/ParameterTable.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace Shell {

struct Bus {
    std::string_view name;
    int channels;
};

struct Descriptor {
    std::uint32_t uniqueId; // four characters, the first in the highest byte
    std::string_view name;
    std::string_view identifier; // stays the same between compatible versions
    std::uint32_t version;       // a byte each: 1.6.2
    std::string_view vendor;
    bool isSynth;
    bool receivesMidi;
    bool sendsMidi;
    int programs;
    std::uint32_t bankTag; // of the stored startup bank
    std::span<const int> hostOrder;
    Bus input;
    Bus output;
    std::span<const std::string_view> feedbackNames;
    std::string_view factoryBank; // name of the resource
};

inline constexpr Descriptor kDescriptor = {
    .uniqueId = 0x426B4D6D, // BkMm
    .name = "Murmelon",
    .identifier = "Murmelon",
    .version = 0x00010602,
    .vendor = "Korvanta",
    .isSynth = false,
    .receivesMidi = true,
    .sendsMidi = false,
    .programs = 16,
    .bankTag = 1,
    .hostOrder = Parameters::kHostOrder,
    .input = {"Main Input", 2},
    .output = {"Main Output", 2},
    .feedbackNames = Parameters::kFeedbackNames,
    .factoryBank = "factorybank",
};

} // namespace Shell
