// Fetches one small document over HTTP without keeping anybody waiting.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Platform {

struct HttpRequest {
    std::string address; // https, or http to this machine itself
    std::string userAgent;
    std::size_t mostBytes = 65536;            // a longer answer is an error
    std::chrono::milliseconds timeout{10000}; // for all of it
};

struct HttpAnswer {
    int status = 0; // 0 when there was no answer
    std::string body;
    std::string error; // what went wrong; empty when there was an answer, whatever its status

    bool good() const { return error.empty() && status == 200; }
};

// Anything that leaves this machine is to be encrypted.
bool mayBeAsked(std::string_view address);

class HttpGet {
public:
    // Begins on a thread of its own. Never throws for what the network does; that is in the answer.
    static std::unique_ptr<HttpGet> start(HttpRequest request);

    // Cancels what is still going on, within a few milliseconds.
    virtual ~HttpGet() = default;

    // Nothing as long as it is going on; after that the same each time.
    virtual std::optional<HttpAnswer> answer() = 0;
};

} // namespace Platform
