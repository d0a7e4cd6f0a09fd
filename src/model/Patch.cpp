#include "model/Patch.h"

#include <algorithm>

namespace Model {

namespace {

std::uint32_t newStamp() noexcept {
    static constinit std::atomic<std::uint32_t> counter{0};
    return counter.fetch_add(1, std::memory_order_relaxed) + 1;
}

} // namespace

std::string Patch::name() const {
    std::array<char, kLongestName + 1> buffer;
    getName(buffer);
    return buffer.data();
}

AtomicPatch::AtomicPatch() : changeStamp_(newStamp()), savedStamp_(changeStamp_.load()) {
    for (std::size_t i = 0; i < values_.size(); ++i) {
        values_[i].store(Parameters::kTable[i].defaultValue, std::memory_order_relaxed);
    }
}

AtomicPatch::AtomicPatch(const AtomicPatch& other) : Patch(), name_(other.name_), path_(other.path_) {
    copyStateFrom(other);
}

AtomicPatch& AtomicPatch::operator=(const AtomicPatch& other) {
    if (this != &other) {
        name_ = other.name_;
        path_ = other.path_;
        copyStateFrom(other);
    }
    return *this;
}

void AtomicPatch::assign(const Patch& other) {
    if (const auto* same = dynamic_cast<const AtomicPatch*>(&other)) {
        *this = *same;
        return;
    }
    setName(other.name());
    setPath(other.path());
    for (int i = 0; i < std::min(parameterCount(), other.parameterCount()); ++i) {
        setValue(i, other.value(i));
    }
    other.isModified() ? markModified() : markSaved();
}

std::unique_ptr<Patch> AtomicPatch::clone() const {
    return std::make_unique<AtomicPatch>(*this);
}

void AtomicPatch::getName(std::span<char> buffer) const {
    if (!buffer.empty()) {
        const auto length = std::min({name_.size(), kLongestName, buffer.size() - 1});
        std::copy_n(name_.begin(), length, buffer.begin());
        buffer[length] = '\0';
    }
}

void AtomicPatch::markModified() {
    changeStamp_.store(newStamp(), std::memory_order_relaxed);
}

void AtomicPatch::markSaved() {
    // In this order a change that another thread makes in between leaves the patch modified.
    const std::uint32_t stamp = newStamp();
    changeStamp_.store(stamp, std::memory_order_relaxed);
    savedStamp_.store(stamp, std::memory_order_relaxed);
}

bool AtomicPatch::isModified() const {
    return changeStamp_.load(std::memory_order_relaxed) != savedStamp_.load(std::memory_order_relaxed);
}

void AtomicPatch::setValue(int index, float value) noexcept {
    if (exchangeValue(index, value)) {
        changeStamp_.store(newStamp(), std::memory_order_relaxed);
    }
}

void AtomicPatch::setValues(int first, std::span<const float> values) noexcept {
    bool changed = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
        changed |= exchangeValue(first + static_cast<int>(i), values[i]);
    }
    if (changed) {
        changeStamp_.store(newStamp(), std::memory_order_relaxed);
    }
}

bool AtomicPatch::exchangeValue(int index, float value) noexcept {
    value = Parameters::clampNormalised(value);
    return values_[static_cast<std::size_t>(index)].exchange(value, std::memory_order_relaxed) != value;
}

void AtomicPatch::copyStateFrom(const AtomicPatch& other) noexcept {
    for (std::size_t i = 0; i < values_.size(); ++i) {
        values_[i].store(other.values_[i].load(std::memory_order_relaxed), std::memory_order_relaxed);
    }
    changeStamp_.store(other.changeStamp_.load(std::memory_order_relaxed), std::memory_order_relaxed);
    savedStamp_.store(other.savedStamp_.load(std::memory_order_relaxed), std::memory_order_relaxed);
}

} // namespace Model
