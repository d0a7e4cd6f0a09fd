#include "ReferenceEngine.h"

#include "engine/NoiseTables.h"

#include <algorithm>
#include <cmath>

using std::numbers::pi;

namespace {

double smoothstep(double v) {
    return (3 - 2 * v) * v * v;
}

double detuneCurve(double v, bool mono) {
    if (!mono && v < 0.007821815399392196) {
        return 0;
    }
    if (!mono && v > 0.9921781846016998) {
        return 1;
    }
    return smoothstep(smoothstep(v));
}

double median(const std::vector<double>& all, std::size_t length) {
    std::vector<double> last(all.end() - static_cast<long>(std::min(length, all.size())), all.end());
    std::sort(last.begin(), last.end());
    return last[last.size() / 2];
}

} // namespace

ReferenceEngine::Rate ReferenceEngine::rateFor(int step, double fs) {
    static constexpr double kRows[4][5] = {// rate, noise scale, pre-emphasis Hz, high-pass Hz, expansion
                                           {8000, 1.12, 150, 250, 0.9},
                                           {11025, 1.08, 100, 125, 0.85},
                                           {22050, 1.04, 75, 75, 0.8},
                                           {0, 1.02, 50, 50, 0.75}};
    const double* row = kRows[step];
    int host = static_cast<int>(fs);
    int wanted = static_cast<int>(row[0]);
    if (step == 3) {
        for (wanted = host; wanted >= 88200; wanted /= 2) {
        }
    }
    const int rate = std::min({wanted, host, 48000});
    Rate c;
    c.rate = rate;
    c.increment = static_cast<float>(rate / fs);
    c.order = static_cast<int>(static_cast<float>(rate) * 0.0012708333f);
    c.lowestLag = rate / 1000;
    c.lags = rate / 30;
    for (c.length = 1; c.length < c.lags; c.length *= 2) {
    }
    c.unvoicedScale = c.length == 128    ? 1.34379
                      : c.length == 256  ? 1.26033
                      : c.length == 512  ? 1.19211
                      : c.length == 1024 ? 1.14426
                      : c.length == 2048 ? 1.10486
                                         : 1.0;
    c.expansion = row[4];
    c.preEmphasis = 1 - std::exp(-2 * pi * row[2] / rate);
    c.noiseSmoothing = 1 - std::exp(-2 * pi * 400 / rate);
    c.noiseScale = row[1];
    c.reference = static_cast<float>(261.62558 / rate);
    const double s1 = 0.5 * std::sin(2 * pi * row[3] / rate);
    const double s2 = std::sin(pi * row[3] / rate);
    const double a = 1 / (s1 * std::sqrt(2.0) + 1);
    const double e = a * s2 * s2;
    c.f = 2 * std::sqrt(e);
    c.q = (1 - a) / std::sqrt(e);
    c.g = 1 - s2 * s2;
    c.k = (a - e) / c.g;
    c.latency = static_cast<int>(std::floor(c.length * 0.29289323 * fs / rate + 0.5)) + 1;
    return c;
}

void ReferenceEngine::clear() {
    countdown_ = 1;
    ring_.assign(static_cast<std::size_t>(c_.length), Pair{});
    phase_ = previousPhase_ = -0.5f;
    lastLags_.clear();
    lastUnvoiced_.clear();
    rawUnvoiced_ = 1;
    silent_ = true;
    filter_.assign(static_cast<std::size_t>(c_.order), 0.0);
    filter_[0] = 1;
    amplitude_ = lag_ = pitch_ = unvoiced_ = pan_ = 0;
    correlation_ = 1;
    mainPhase_ = detunedPhase_ = 0;
    noiseState_ = 0;
    noiseLow_ = low_ = band_ = previousOutput_ = currentOutput_ = {};
    history_.assign(64, Pair{});
}

void ReferenceEngine::smooth(const Engine::ParameterValues& p, int samples) {
    const float targets[4] = {p.pitch, p.tracking, p.detune, p.noiseAdjust};
    const double a = std::exp(-2 * pi * samples / fs_);
    for (std::size_t i = 0; i < 4; ++i) {
        const double d = static_cast<double>(targets[i]) - static_cast<double>(smoothed_[i]);
        if (time_ == 0 || std::fabs(d) < 0.001) {
            smoothed_[i] = targets[i];
        } else {
            const double c = std::min((1 - a) + (std::fabs(d) - 0.001) * a * 4.016064, 1.0);
            smoothed_[i] += static_cast<float>(c * d);
        }
    }
}

void ReferenceEngine::midi(const Engine::MidiEvent& event, bool midiOn, bool sync) {
    const int kind = event.status / 16;
    const int v = event.data2 * 128 + event.data1 - 8192;
    if (kind == 9 && event.data2 > 0) {
        if (notes_.size() < 32) {
            notes_.push_back(event.data1);
            if (notes_.size() == 1 && midiOn && !sync) {
                phase_ = 0;
                previousPhase_ = -0.5f;
            }
        }
    } else if (kind == 8 || kind == 9) {
        std::erase(notes_, static_cast<int>(event.data1));
    } else if (kind == 11 && event.data1 == 64) {
        sustain_ = event.data2 != 0;
    } else if (kind == 11 && (event.data1 == 120 || event.data1 == 123)) {
        notes_.clear();
    } else if (kind == 11 && event.data1 == 121) {
        bend_ = 0;
        sustain_ = false;
    } else if (kind == 14) {
        bend_ = v >= 0 ? v / 8191.0 : v / 8192.0;
    }
}

double ReferenceEngine::midiPitch(const Engine::MidiSettings& settings) const {
    const double bend =
        settings.bendHeldOnly && notes_.empty() ? 0 : bend_ * settings.bendRangeSemitones / 12.0;
    return (note_ - 60) / 12.0 + bend + std::log2(static_cast<double>(settings.masterTuningHz) / 440);
}

void ReferenceEngine::process(const float* const* in, float* const* out, int samples,
                              const Engine::Block& block) {
    const auto& p = block.parameters;
    const int step = std::min(static_cast<int>(p.sampleRate * 4), 3);
    if (step != step_) {
        step_ = step;
        c_ = rateFor(step, fs_);
        clear();
    }
    smooth(p, samples);
    const bool sync = p.sync >= 0.5f;
    const bool midiOn = p.midi >= 0.5f;
    static constexpr double kDivisions[17] = {0, 1, 4 / 3.0, 1.5, 2,  8 / 3.0, 3,  4, 16 / 3.0,
                                              6, 8, 12,      16,  24, 32,      48, 64};
    const double division = kDivisions[std::min(static_cast<int>(p.frameRate * 17), 16)];
    double frameStep = p.frameRate * p.frameRate * p.frameRate * 80 / c_.rate;
    if (sync) {
        frameStep = std::min(division * block.transport.tempo / 240, 80.0) / c_.rate;
        if (block.transport.songPosition && !(midiOn && sustain_)) {
            const double x = division * *block.transport.songPosition * 0.25;
            phase_ = static_cast<float>(x - std::floor(x + 0.5));
        }
    }
    const double wet = std::sqrt(static_cast<double>(p.mix));
    const double dry = std::sqrt(1 - static_cast<double>(p.mix));
    const double wetBefore = wetGain_ < 0 ? wet : wetGain_;
    const double dryBefore = dryGain_ < 0 ? dry : dryGain_;
    std::size_t next = 0;
    for (int i = 0; i < samples; ++i) {
        for (; next < block.midiEvents.size() && block.midiEvents[next].sampleOffset <= i; ++next) {
            midi(block.midiEvents[next], midiOn, sync);
        }
        if (!notes_.empty()) {
            note_ = notes_.back();
        }
        const auto asPlayed = [&](Pair x) {
            return p.legacyMode >= 0.5f ? Pair{(x[0] + x[1]) / 2, (x[0] + x[1]) / 2} : x;
        };
        dry_.push_back({in[0][i], in[1][i]});
        const Pair input = asPlayed(dry_.back());
        ++time_;
        double f = 1; // between ticks the output holds
        countdown_ -= c_.increment;
        if (countdown_ <= 0) {
            f = static_cast<double>(-countdown_ * (1 / c_.increment));
            countdown_ += 1;
            const Pair x = {input[0] + f * (lastInput_[0] - input[0]),
                            input[1] + f * (lastInput_[1] - input[1])};
            previousOutput_ = currentOutput_;
            currentOutput_ = internalSample(x, block, midiOn && sustain_ ? 0 : static_cast<float>(frameStep));
        }
        lastInput_ = input;
        const auto delay = static_cast<std::size_t>(c_.latency);
        const Pair delayed = asPlayed(dry_.size() > delay ? dry_[dry_.size() - 1 - delay] : Pair{});
        for (std::size_t ch = 0; ch < 2; ++ch) {
            const double held = previousOutput_[ch] + f * (currentOutput_[ch] - previousOutput_[ch]);
            out[ch][i] = static_cast<float>(held * (wetBefore + (wet - wetBefore) * i / samples) +
                                            delayed[ch] * (dryBefore + (dry - dryBefore) * i / samples));
        }
    }
    for (; next < block.midiEvents.size(); ++next) { // timed behind the block
        midi(block.midiEvents[next], midiOn, sync);
    }
    if (samples > 0) {
        wetGain_ = wet;
        dryGain_ = dry;
    }
}

ReferenceEngine::Pair ReferenceEngine::internalSample(Pair input, const Engine::Block& block,
                                                      float frameStep) {
    ring_.pop_front();
    ring_.push_back(input);
    phase_ += frameStep;
    while (phase_ >= 0.5f) {
        phase_ -= 1;
    }
    if (previousPhase_ < 0 && phase_ >= 0) {
        takeFrame(block.parameters.legacyMode >= 0.5f);
    }
    previousPhase_ = phase_;

    Pair y = excite(block);
    Pair clamped;
    for (std::size_t ch = 0; ch < 2; ++ch) {
        for (std::size_t k = 1; k < filter_.size(); ++k) {
            y[ch] += filter_[k] * history_[k - 1][ch];
        }
        clamped[ch] = std::clamp(y[ch], -100.0, 100.0);
    }
    history_.push_front(clamped);
    history_.pop_back();
    for (std::size_t ch = 0; ch < 2; ++ch) {
        if (step_ == 0) {
            y[ch] = std::floor(std::clamp(512 * y[ch] + 0.5, -256.0, 256.0)) / 512 + 1e-8 * y[ch];
        }
        low_[ch] = std::clamp(low_[ch], -10.0, 10.0);
        band_[ch] = std::clamp(band_[ch], -10.0, 10.0);
        low_[ch] += c_.f * band_[ch];
        const double high = c_.k * y[ch] - low_[ch] - c_.q * band_[ch];
        band_[ch] += high * c_.f;
        y[ch] = high * c_.g;
    }
    return y;
}

void ReferenceEngine::takeFrame(bool mono) {
    const auto n = static_cast<std::size_t>(c_.length);
    std::vector<double> mid(n);
    Pair lowPass{};
    double ll = 0, rr = 0, ss = 0, dd = 0, energy = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / c_.length;
        const double w = 1.9074796 * std::pow(std::sin(pi * t * t), 2);
        Pair x;
        for (std::size_t ch = 0; ch < 2; ++ch) {
            const double sample = ring_[i][ch] + static_cast<double>(Engine::kNoiseFloorTable[2 * i + ch]);
            lowPass[ch] += c_.preEmphasis * (sample - lowPass[ch]);
            x[ch] = (sample - lowPass[ch]) * w;
        }
        ll += x[0] * x[0];
        rr += x[1] * x[1];
        ss += (x[0] + x[1]) * (x[0] + x[1]);
        dd += (x[0] - x[1]) * (x[0] - x[1]);
        mid[i] = (x[0] + x[1]) / 2;
        energy += mid[i] * mid[i];
    }
    silent_ = energy / c_.length < 2.5000003e-7;
    if (!silent_) {
        std::vector<double> r(static_cast<std::size_t>(c_.lags));
        for (std::size_t lag = 0; lag < r.size(); ++lag) {
            for (std::size_t i = 0; i + lag < n; ++i) {
                r[lag] += mid[i] * mid[i + lag];
            }
        }
        predict(r);
        searchPitch(r);
        pan_ = 0;
        correlation_ = 1;
        if (!mono) {
            stereo(ll / c_.length, rr / c_.length, ss / c_.length, dd / c_.length);
        }
    }
    const double width = std::fabs(pan_) > 0.999 ? 0 : 1 - correlation_;
    frames_.push_back({time_, silent_, silent_ ? 0 : lag_, pitch_, silent_ ? 0 : rawUnvoiced_,
                       silent_ ? 0 : amplitude_, pan_, width, filter_});
}

void ReferenceEngine::stereo(double ll, double rr, double ss, double dd) {
    const double l = std::sqrt(ll), r = std::sqrt(rr), s = std::sqrt(ss), d = std::sqrt(dd);
    pan_ = l < r ? 1 - l / r : l > r ? r / l - 1 : 0;
    const double a = std::pow((r + l) * d, 2) - std::pow((l - r) * s, 2);
    const double b = std::pow((r + l) * s, 2) - std::pow((l - r) * d, 2);
    const bool valid = a >= 1e-9 && b >= 1e-9;
    correlation_ = d < s   ? (valid ? 1 - std::sqrt(a / b) : 1)
                   : d > s ? (valid ? std::sqrt(b / a) - 1 : -1)
                           : 0;
}

void ReferenceEngine::predict(const std::vector<double>& r) {
    const auto p = static_cast<std::size_t>(c_.order);
    std::vector<double> w(p);
    for (std::size_t i = 0; i < p; ++i) {
        w[i] = r[i] * std::pow(0.9, static_cast<double>(i) / c_.length);
    }
    std::vector<double> a = {1};
    double error = w[0], largest = 0;
    for (std::size_t m = 1; m < p; ++m) {
        double acc = 0;
        for (std::size_t j = 0; j < m; ++j) {
            acc += a[j] * w[m - j];
        }
        const double k = -acc / error;
        a.push_back(0);
        const std::vector<double> reversed(a.rbegin(), a.rend());
        for (std::size_t j = 0; j <= m; ++j) {
            a[j] += k * reversed[j];
        }
        error *= 1 - k * k;
        largest = std::max(largest, std::fabs(k));
    }
    amplitude_ = 0.4 * std::sqrt(std::max(error, 1e-6) / c_.length);
    if (largest < 0.9999 && error > 1e-5) {
        for (std::size_t k = 1; k < p; ++k) {
            filter_[k] = -std::pow(c_.expansion, static_cast<double>(k) / c_.order) * a[k];
        }
    }
}

void ReferenceEngine::searchPitch(const std::vector<double>& r) {
    std::vector<double> c(r.size());
    for (std::size_t i = 0; i < r.size(); ++i) {
        const double x = static_cast<double>(i) / c_.length;
        c[i] = 1.4 * r[i] / (0.4 + 0.99589914 * std::exp(-11.52489 * x * x));
    }
    const double expected = rawUnvoiced_ < 0.5 ? median(lastLags_, 5) : 0;
    auto i = static_cast<std::size_t>(c_.lowestLag);
    while (i < c.size() - 1 && c[i] > 0) {
        ++i;
    }
    lag_ = static_cast<double>(i);
    double best = 0, height = 0;
    for (; i + 1 < c.size(); ++i) {
        if (!(c[i] > 1e-5 && c[i] > c[i - 1] && c[i] > c[i + 1])) {
            continue;
        }
        const double plain = c[i] + std::fabs(c[i - 1] - c[i + 1]) / 2;
        const double y = expected > 0 ? (static_cast<double>(i) - expected) * 0.25 / expected : 0;
        const double score = expected > 0 ? plain * (1 + std::exp(std::max(-2 * y * y, -10.0))) : plain;
        if (score < best) {
            continue;
        }
        best = score;
        height = plain;
        double offset = 0;
        if (c[i - 1] > c[i + 1]) {
            offset = c[i] - c[i + 1] < 1e-5 ? 0 : (c[i + 1] - c[i - 1]) / (2 * (c[i] - c[i + 1]));
        } else {
            offset = c[i - 1] - c[i] >= -1e-5 ? 0 : (c[i - 1] - c[i + 1]) / (2 * (c[i - 1] - c[i]));
        }
        lag_ = static_cast<double>(i) + offset;
    }
    rawUnvoiced_ = std::clamp((1 - height / r[0]) * c_.unvoicedScale, 0.0, 1.0);
    lastLags_.push_back(lag_);
    lastUnvoiced_.push_back(rawUnvoiced_);
    pitch_ = std::log2(1 / (median(lastLags_, 5) * static_cast<double>(c_.reference)));
    unvoiced_ = median(lastUnvoiced_, 3);
}

double ReferenceEngine::noise() {
    noiseState_ = noiseState_ * 1453128179u - 115097135u;
    noiseState_ = noiseState_ << 1 | noiseState_ >> 31;
    return static_cast<double>(Engine::kNoiseTable[noiseState_ >> 22]);
}

double ReferenceEngine::pulse(float& phase, float frequency) const {
    phase += frequency;
    const bool wrapped = phase >= 1;
    phase -= wrapped ? 1 : 0;
    const auto f = static_cast<double>(frequency);
    if (step_ != 3) {
        return ((wrapped ? 2 : 0) - 2 * f) / std::sqrt(4 * f * (1 - f));
    }
    const int harmonics = static_cast<int>(0.5f / frequency);
    double sum = 0;
    for (int k = 1; k <= harmonics; ++k) {
        sum += std::cos(2 * pi * k * static_cast<double>(phase));
    }
    return sum / std::sqrt(harmonics / 2.0);
}

ReferenceEngine::Pair ReferenceEngine::excite(const Engine::Block& block) {
    if (silent_) {
        const double x = noise() * 1e-8;
        return {x, x};
    }
    const bool midiOn = block.parameters.midi >= 0.5f;
    const bool mono = block.parameters.legacyMode >= 0.5f;
    const auto [pitch, tracking, detune, noiseAdjust] = smoothed_;
    // In single precision: a pulse comes a sample early or late by the last bit of its phase.
    const float octaves = 6 * pitch - 3 + 2 * tracking * static_cast<float>(pitch_) +
                          (midiOn ? static_cast<float>(midiPitch(block.midiSettings)) : 0);
    const float frequency = std::min(std::exp2(octaves) * c_.reference, 0.49f);
    const double s = detuneCurve(static_cast<double>(detune), mono);
    const double share = std::min(200 * s, 1.0) / 2;

    double v = std::clamp(2.0 * noiseAdjust - 1 + unvoiced_, 0.0, 1.0);
    v = step_ == 0 ? (v >= 0.5 ? 1 : 0) : smoothstep(v);
    const double gate = midiOn && notes_.empty() ? 0 : 1;
    const double level = 3 * amplitude_ * gate + 1e-8;

    double pulses = std::sqrt(1 - share) * pulse(mainPhase_, frequency);
    if (std::sqrt(share) >= 1e-5) {
        const float detuned = std::min(frequency * std::exp2(static_cast<float>(s)), 0.49f);
        pulses += std::sqrt(share) * pulse(detunedPhase_, detuned);
    }
    pulses *= std::sqrt(1 - v) * level;
    const double noiseGain = std::sqrt(v) * level * c_.noiseScale;
    if (mono) {
        const double x = pulses + noise() * 1.7320508 * noiseGain;
        return {x, x};
    }
    Pair n;
    for (std::size_t ch = 0; ch < 2; ++ch) {
        const double x = noise() * 2.4494898;
        noiseLow_[ch] += c_.noiseSmoothing * (x - noiseLow_[ch]);
        n[ch] = (x - noiseLow_[ch]) * noiseGain;
    }
    const double own = 1 - std::fabs(correlation_) / 2;
    return {(own * n[0] + correlation_ / 2 * n[1] + pulses) * std::min(1 - pan_, 1.0),
            (own * n[1] + correlation_ / 2 * n[0] + pulses) * std::min(1 + pan_, 1.0)};
}
