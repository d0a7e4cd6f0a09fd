#include "platform/win32/RegistryValue.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Platform {

namespace {

[[noreturn]] void fail(const char* action, const std::wstring& key, const std::wstring& name,
                       unsigned long error) {
    throw std::runtime_error(std::string("Could not ") + action + " " + toUtf8(key) + "\\" + toUtf8(name) +
                             " in the registry: " + systemWords(error));
}

// Held between processes and between threads alike. The system lets a thread lock its own mutex once more,
// which would lose what the outer update is about to store: that is refused here as if another held it.
class NamedLock {
public:
    NamedLock(const std::wstring& key, const std::wstring& name, std::chrono::milliseconds patience)
        : name_(mutexName(key, name)), mutex_(CreateMutexW(nullptr, FALSE, name_.c_str())) {
        if (!mutex_) {
            fail("lock", key, name, GetLastError());
        }
        const DWORD result = heldHere()
                                 ? WAIT_TIMEOUT
                                 : WaitForSingleObject(mutex_.get(), static_cast<DWORD>(patience.count()));
        // Abandoned: its holder died between two whole values, for a value is stored at once.
        if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) {
            fail("lock", key, name, result == WAIT_TIMEOUT ? ERROR_SEM_TIMEOUT : GetLastError());
        }
        const std::lock_guard lock(holders().mutex);
        holders().list.emplace_back(name_, GetCurrentThreadId());
    }
    ~NamedLock() {
        {
            const std::lock_guard lock(holders().mutex);
            std::erase(holders().list, Holder(name_, GetCurrentThreadId()));
        }
        ReleaseMutex(mutex_.get());
    }
    NamedLock(const NamedLock&) = delete;
    NamedLock& operator=(const NamedLock&) = delete;

private:
    struct Closer {
        void operator()(HANDLE handle) const { CloseHandle(handle); }
    };

    using Holder = std::pair<std::wstring, DWORD>;
    struct Holders {
        std::mutex mutex;
        std::vector<Holder> list; // guarded by mutex
    };
    static Holders& holders() {
        static Holders all; // not one for each thread: this compiler's go before their destructors run
        return all;
    }

    bool heldHere() const {
        const std::lock_guard lock(holders().mutex);
        const Holder wanted(name_, GetCurrentThreadId());
        return std::find(holders().list.begin(), holders().list.end(), wanted) != holders().list.end();
    }

    // A backslash has a meaning of its own in these names.
    static std::wstring mutexName(const std::wstring& key, const std::wstring& name) {
        std::wstring text = key + L'/' + name;
        std::replace(text.begin(), text.end(), L'\\', L'/');
        return L"Local\\" + text;
    }

    std::wstring name_;
    std::unique_ptr<void, Closer> mutex_;
};

} // namespace

RegistryValue::RegistryValue(const std::string& key, const std::string& name,
                             std::chrono::milliseconds patience)
    : key_(toWide(key)), name_(toWide(name)), patience_(patience) {}

std::string RegistryValue::read() const {
    std::string contents(4096, '\0');
    while (true) {
        auto size = static_cast<DWORD>(contents.size());
        const LSTATUS result = RegGetValueW(HKEY_CURRENT_USER, key_.c_str(), name_.c_str(), RRF_RT_REG_BINARY,
                                            nullptr, contents.data(), &size);
        if (result == ERROR_FILE_NOT_FOUND) {
            return {};
        }
        if (result == ERROR_MORE_DATA) { // it may grow again before the next try
            contents.resize(std::max<std::size_t>(size, 2 * contents.size()));
            continue;
        }
        if (result != ERROR_SUCCESS) {
            fail("read", key_, name_, static_cast<unsigned long>(result));
        }
        contents.resize(size);
        return contents;
    }
}

void RegistryValue::write(const std::wstring& name, const std::string& contents) const {
    HKEY key = nullptr;
    LSTATUS result = RegCreateKeyExW(HKEY_CURRENT_USER, key_.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                                     &key, nullptr);
    if (result == ERROR_SUCCESS) {
        result =
            RegSetValueExW(key, name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>(contents.data()),
                           static_cast<DWORD>(contents.size()));
        RegCloseKey(key);
    }
    if (result != ERROR_SUCCESS) {
        fail("write", key_, name, static_cast<unsigned long>(result));
    }
}

void RegistryValue::update(const std::function<Replacement(const std::string& contents)>& change) {
    const NamedLock lock(key_, name_, patience_);
    const std::string contents = read();
    const Replacement next = change(contents);
    if (next.setAside) {
        write(name_ + L".damaged", contents);
    }
    write(name_, next.contents);
}

} // namespace Platform
