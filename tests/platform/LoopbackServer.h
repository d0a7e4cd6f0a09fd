// An HTTP server on this machine that says what it was told to for each path, and keeps silent on the paths
// that it does not know.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <thread>

namespace Testing {

class LoopbackServer {
public:
    // `answers`: whole answers, head included, by path. Throws when there is no loopback network.
    explicit LoopbackServer(std::map<std::string, std::string> answers);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    std::string address(const std::string& path) const;

private:
    void serve();

    std::map<std::string, std::string> answers_;
    std::intptr_t socket_ = -1;
    std::uint16_t port_ = 0;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

// A whole answer.
std::string reply(const std::string& body, const std::string& status = "200 OK", const std::string& more = {});

} // namespace Testing
