// A session bus of the test's own, and a desktop portal on it that answers what it is told to.
#pragma once

#include <dbus/dbus.h>

#include <atomic>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <thread>

namespace Testing {

// The process's session bus as long as it lives. One at a time.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

private:
    pid_t process_ = 0;
};

class FakePortal {
public:
    static constexpr unsigned kRefuses = 99;

    struct Answer {
        unsigned response;
        std::string address;
    };

    explicit FakePortal(Answer answer);
    ~FakePortal();
    FakePortal(const FakePortal&) = delete;
    FakePortal& operator=(const FakePortal&) = delete;

    // "METHOD|TITLE|OPTION=VALUE..." without the token.
    std::string question();

private:
    void serve();
    void answerCall(DBusMessage* call);
    void sendResponse(const std::string& path, const char* destination);

    Answer answer_;
    DBusConnection* connection_;
    std::mutex mutex_;
    std::string question_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

} // namespace Testing
