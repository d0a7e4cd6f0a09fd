#include "parameters/ParameterText.h"

#include "parameters/DecimalText.h"
#include "parameters/ParameterTable.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace Parameters {

namespace {

constexpr int kDisplayDecimals = 2;
// Decimals that texts in the exact form have at least: linear scales, and the curved ones (detune, frame
// rate).
constexpr int kLinearDecimals = 7;
constexpr int kCurvedDecimals = 14;
constexpr int kMostDoubleDecimals = 20;

constexpr double kMostCents = 1200.0;
constexpr double kMostFramesPerSecond = 80.0;

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Letter case and blanks do not matter in typed texts: "44->48", "22 KHZ".
std::string folded(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (!isBlank(c)) {
            result += toLower(c);
        }
    }
    return result;
}

std::string_view withoutSuffix(std::string_view text, std::string_view suffix) {
    if (text.size() > suffix.size() && text.ends_with(suffix)) {
        text.remove_suffix(suffix.size());
    }
    return text;
}

std::string fixed(double number, int decimals) {
    char buffer[400];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed, decimals).ptr;
    std::string text(buffer, end);
    if (text.starts_with('-') && text.find_first_not_of("-0.") == std::string::npos) {
        text.erase(0, 1); // no "-0.00"
    }
    return text;
}

float asFloat(const Decimal& number) {
    const std::string text = number.text();
    float value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value); // an underflow leaves 0
    return value;
}

// --- linear scales ---------------------------------------------------------------------------------------

struct LinearScale {
    int minimum;
    int range;

    explicit LinearScale(const Record& record)
        : minimum(static_cast<int>(record.minimum)),
          range(static_cast<int>(record.maximum - record.minimum)) {}

    float read(const Decimal& number) const {
        return clampNormalised(asFloat(unscaled(number, range, minimum)));
    }

    // Whether read() gives `value` for the text. Doubles tell, but where the number is next to the border
    // between two floats.
    bool readsAs(float value, const std::string& text) const {
        constexpr double kDoubt = 1e-15; // three roundings of numbers that are small beside the scale's range
        double number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        const double normalised = (number - minimum) / range;
        const auto middle = static_cast<double>(value);
        const double below = (middle + static_cast<double>(std::nextafter(value, -1.0f))) / 2;
        const double above = (middle + static_cast<double>(std::nextafter(value, 2.0f))) / 2;
        if (normalised > below + kDoubt && normalised < above - kDoubt) {
            return true;
        }
        return normalised > below - kDoubt && normalised < above + kDoubt &&
               read(*Decimal::parse(text)) == value;
    }

    std::string write(float value, TextForm form) const {
        const double shown = minimum + static_cast<double>(value) * range;
        if (form == TextForm::display) {
            return fixed(shown, kDisplayDecimals);
        }
        for (int decimals = kLinearDecimals; decimals <= kMostDoubleDecimals; ++decimals) {
            std::string text = fixed(shown, decimals);
            if (readsAs(value, text)) {
                return text;
            }
        }
        // A double cannot hold it: scale the float's own shortest decimal text.
        char buffer[200];
        const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed).ptr;
        return scaled(*Decimal::parse({buffer, static_cast<std::size_t>(end - buffer)}), range, minimum)
            .text();
    }
};

// --- curved scales ---------------------------------------------------------------------------------------

double detuneCents(float value) {
    return kMostCents * detuneCurve(value);
}

struct CurvedScale {
    double (*forward)(float value); // never falls
    double maximum;

    // The float whose shown number is nearest. Non-negative floats are ordered as their bits are.
    float read(double number) const {
        if (!(number > 0)) {
            return 0;
        }
        if (number >= maximum) {
            return 1;
        }
        std::uint32_t below = 0;
        auto above = std::bit_cast<std::uint32_t>(1.0f);
        while (above - below > 1) {
            const std::uint32_t middle = below + (above - below) / 2;
            (forward(std::bit_cast<float>(middle)) < number ? below : above) = middle;
        }
        const auto low = std::bit_cast<float>(below);
        const auto high = std::bit_cast<float>(above);
        return number - forward(low) < forward(high) - number ? low : high;
    }

    std::string write(float value, TextForm form) const {
        const double shown = forward(value);
        if (form == TextForm::display) {
            return fixed(shown, kDisplayDecimals);
        }
        for (int decimals = kCurvedDecimals;; ++decimals) {
            std::string text = fixed(shown, decimals);
            double number = 0;
            std::from_chars(text.data(), text.data() + text.size(), number);
            if (decimals == kMostDoubleDecimals || read(number) == value || read(shown) != value) {
                return text; // the last: the scale is flat here, no digit would help
            }
        }
    }
};

constexpr CurvedScale kDetuneScale = {detuneCents, kMostCents};
constexpr CurvedScale kFrameRateScale = {freeFrameRateHz, kMostFramesPerSecond};

std::optional<float> readCurved(const CurvedScale& scale, std::string_view text) {
    const auto number = Decimal::parse(text);
    if (!number) {
        return std::nullopt;
    }
    const std::string plain = number->text();
    double value = 0;
    if (std::from_chars(plain.data(), plain.data() + plain.size(), value).ec != std::errc{}) {
        const auto wholeDigits = plain.size() - number->decimals;
        value = wholeDigits > 300 ? HUGE_VAL : 0.0; // beyond a double's range at one end or the other
    }
    return scale.read(value);
}

// --- labels ----------------------------------------------------------------------------------------------

std::optional<float> labelValue(std::span<const std::string_view> labels, std::string_view foldedText) {
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (folded(labels[i]) == foldedText) {
            return static_cast<float>(i) / static_cast<float>(labels.size() - 1);
        }
    }
    return std::nullopt;
}

// A division by its whole label or, for the dotted ones, by either of the two names that the label joins:
// "3/4 (1/2.)", "3/4" or "1/2.".
std::optional<float> divisionValue(std::string_view foldedText) {
    if (const auto value = labelValue(kSyncDivisionLabels, foldedText)) {
        return value;
    }
    for (const std::string_view label : kSyncDivisionLabels) {
        const auto open = label.find(" (");
        if (open == std::string_view::npos) {
            continue;
        }
        const auto dotted = label.substr(open + 2, label.size() - open - 3);
        if (foldedText == label.substr(0, open) || foldedText == dotted) {
            return labelValue(kSyncDivisionLabels, folded(label));
        }
    }
    return std::nullopt;
}

std::optional<float> switchValue(std::string_view foldedText) {
    constexpr std::array<std::string_view, 4> kOn = {"on", "yes", "true", "1"};
    constexpr std::array<std::string_view, 4> kOff = {"off", "no", "false", "0"};
    if (std::ranges::find(kOn, foldedText) != kOn.end()) {
        return 1.0f;
    }
    if (std::ranges::find(kOff, foldedText) != kOff.end()) {
        return 0.0f;
    }
    return std::nullopt;
}

} // namespace

std::string valueToText(int id, float value, bool syncOn, TextForm form) {
    value = clampNormalised(value);
    switch (id) {
    case sampleRate:
        return std::string(kSampleRateLabels[static_cast<std::size_t>(sampleRateStep(value))]);
    case frameRate:
        if (syncOn) {
            return std::string(kSyncDivisionLabels[static_cast<std::size_t>(syncDivision(value))]);
        }
        return kFrameRateScale.write(value, form) + " Hz";
    case detune:
        return kDetuneScale.write(value, form);
    default:
        break;
    }
    const Record& record = kTable[static_cast<std::size_t>(id)];
    if (record.kind == Kind::onOff) {
        return isOn(value) ? "On" : "Off";
    }
    return LinearScale(record).write(value, form);
}

std::optional<float> textToValue(int id, std::string_view text, bool syncOn) {
    const Record& record = kTable[static_cast<std::size_t>(id)];
    const std::string whole = folded(text);
    const std::string unit = id == frameRate ? "hz" : folded(record.unit);
    const std::string_view plain = withoutSuffix(whole, unit);
    switch (id) {
    case sampleRate:
        return labelValue(kSampleRateLabels, plain);
    case frameRate:
        // Divisions and hertz cannot be mistaken for each other, so either is taken whatever `sync` says;
        // only the bare number that begins a division needs it.
        if (const auto division = divisionValue(whole)) {
            return division;
        }
        return syncOn && plain == whole ? std::nullopt : readCurved(kFrameRateScale, plain);
    case detune:
        return readCurved(kDetuneScale, plain);
    default:
        break;
    }
    if (record.kind == Kind::onOff) {
        return switchValue(whole);
    }
    const auto number = Decimal::parse(plain);
    return number ? std::optional(LinearScale(record).read(*number)) : std::nullopt;
}

std::string appendUnit(int id, std::string text) {
    const std::string_view unit = kTable[static_cast<std::size_t>(id)].unit;
    if (!unit.empty()) {
        const char first = toLower(unit.front());
        text += first >= 'a' && first <= 'z' ? " " : "";
        text += unit;
    }
    return text;
}

std::string shownText(int id, float value, bool syncOn) {
    std::string text = valueToText(id, value, syncOn, TextForm::display);
    const std::string_view unit = kTable[static_cast<std::size_t>(id)].unit;
    if (!unit.empty()) {
        text += ' ';
        text += unit;
    }
    return text;
}

} // namespace Parameters
