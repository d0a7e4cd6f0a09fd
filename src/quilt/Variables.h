// All variables that an editor's documents see: the provider's, and those that only the framework knows,
// which the documents create by writing them.
//
// Writes can be held back, while a document is being built or its views look at the variables: then they are
// queued and carried out, in their order, when the last hold ends. While an update is on, each variable is
// read once, so that all views see the same state whatever the audio thread does meanwhile.
#pragma once

#include "quilt/VariableProvider.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Quilt {

class Variables {
public:
    // `provider` may be nullptr.
    explicit Variables(VariableProvider* provider) : provider_(provider) {}

    // nullopt: neither the provider nor the framework knows the name.
    std::optional<std::string> find(std::string_view name) const;

    // Throws std::runtime_error for an unknown name: "Unknown variable: NAME", and during an update, which
    // began with a consistent state, "Inconsistent variable access".
    std::string get(std::string_view name) const;

    // Throws what the provider throws, at once or from release().
    void set(std::string_view name, std::string_view value);

    std::uint64_t changeCount() const;

    // Holds nest. When the last one ends, what was queued is written; what a write throws goes to `failed`
    // and does not stop the next.
    using Failed = std::function<void(const std::exception&)>;
    void hold() { ++holds_; }
    void release(const Failed& failed);

    // Without `consistent` variables are read as they are: for views that are new and may ask for what nobody
    // has.
    void beginUpdate(bool consistent = true);
    void endUpdate(const Failed& failed);

    // Called after each write, of any variable.
    void onWritten(std::function<void(std::string_view name)> written) { written_ = std::move(written); }

    VariableProvider* provider() const { return provider_; }

private:
    using Table = std::map<std::string, std::string, std::less<>>;

    std::optional<std::string> read(std::string_view name) const;
    void write(std::string_view name, std::string_view value);

    VariableProvider* provider_;
    Table table_;
    std::uint64_t tableChanges_ = 0;
    std::vector<std::pair<std::string, std::string>> queued_;
    int holds_ = 0;
    bool snapshotUsed_ = false;
    mutable Table snapshot_; // of the update that is on
    std::function<void(std::string_view)> written_;
};

} // namespace Quilt
