// A shared record in a binary value of the user's registry, guarded by a named mutex. What is set aside goes
// to the value NAME.damaged.
#pragma once

#include "platform/SharedRecord.h"

#include <chrono>
#include <string>

namespace Platform {

class RegistryValue final : public SharedRecord {
public:
    // `key` lies below HKEY_CURRENT_USER and is made when the first contents are stored. A program that holds
    // the mutex longer than `patience` makes updates fail.
    RegistryValue(const std::string& key, const std::string& name,
                  std::chrono::milliseconds patience = std::chrono::seconds(3));

    std::string read() const override;
    void update(const std::function<Replacement(const std::string& contents)>& change) override;

private:
    void write(const std::wstring& name, const std::string& contents) const;

    std::wstring key_;
    std::wstring name_;
    std::chrono::milliseconds patience_;
};

} // namespace Platform
