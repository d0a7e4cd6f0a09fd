// A patch is one complete setting of the effect: a name, the file it came from, a normalised value for each
// parameter, and whether it has changed since it was saved.
//
// Everything that holds or hands around patches works on the interface; AtomicPatch is the one kind there is.
// Program slots are AtomicPatches that never move: installing a patch in a program assigns it to the slot, so
// the audio thread may read a slot's values whatever the main thread does.
#pragma once

#include "parameters/ParameterTable.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace Model {

class Patch {
public:
    static constexpr std::size_t kLongestName = 255;

    virtual std::unique_ptr<Patch> clone() const = 0;
    virtual void setPath(const std::filesystem::path& path) = 0; // empty: it never touched a file
    virtual std::filesystem::path path() const = 0;
    virtual void setName(std::string_view name) = 0;
    // Fills `buffer` with the name, at most kLongestName characters of it, and a NUL.
    virtual void getName(std::span<char> buffer) const = 0;
    virtual void markModified() = 0;
    virtual void markSaved() = 0;
    virtual bool isModified() const = 0;
    virtual int parameterCount() const = 0;
    virtual float value(int index) const = 0;
    virtual void setValue(int index, float value) = 0;
    virtual void setValues(int first, std::span<const float> values) = 0;
    virtual ~Patch() = default;

    std::string name() const;
};

// Values and stamps are single atomics, which every thread may read and write. Name and path are the main
// thread's.
//
// A stamp is a number that has not been handed out before in this process. The patch is modified exactly when
// the stamp of its last change is not the one of its last saving; copies carry both along.
class AtomicPatch final : public Patch {
public:
    // Default values, no name, not modified.
    AtomicPatch();
    AtomicPatch(const AtomicPatch& other);
    AtomicPatch& operator=(const AtomicPatch& other);

    // As copying, from any kind of patch.
    void assign(const Patch& other);

    std::unique_ptr<Patch> clone() const override;
    void setPath(const std::filesystem::path& path) override { path_ = path; }
    std::filesystem::path path() const override { return path_; }
    void setName(std::string_view name) override { name_ = name.substr(0, kLongestName); }
    void getName(std::span<char> buffer) const override;
    void markModified() override;
    void markSaved() override;
    bool isModified() const override;
    int parameterCount() const override { return Parameters::kCount; }

    // [any]
    float value(int index) const noexcept override {
        return values_[static_cast<std::size_t>(index)].load(std::memory_order_relaxed);
    }
    // [any] Brings the value into 0..1; the patch is changed only when the value differs from the one it had.
    void setValue(int index, float value) noexcept override;
    // The same for several values from `first` on, as one change.
    void setValues(int first, std::span<const float> values) noexcept override;

    // [any] Differs after every change, and between patches that are not copies of each other.
    std::uint32_t changeStamp() const noexcept { return changeStamp_.load(std::memory_order_relaxed); }

private:
    bool exchangeValue(int index, float value) noexcept;
    void copyStateFrom(const AtomicPatch& other) noexcept;

    std::string name_;
    std::filesystem::path path_;
    std::array<std::atomic<float>, Parameters::kCount> values_;
    std::atomic<std::uint32_t> changeStamp_;
    std::atomic<std::uint32_t> savedStamp_;
};

} // namespace Model
