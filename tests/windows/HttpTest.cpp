// Against a server on this machine that knows a few paths and keeps silent on others.
#include "platform/HttpGet.h"

#include <gtest/gtest.h>

#include <winsock2.h>

#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace Platform;
using namespace std::chrono_literals;

namespace {

class LoopbackServer {
public:
    explicit LoopbackServer(std::map<std::string, std::string> answers) : answers_(std::move(answers)) {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof address;
        socket_ = socket(AF_INET, SOCK_STREAM, 0);
        bind(socket_, reinterpret_cast<sockaddr*>(&address), size);
        listen(socket_, 8);
        getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }
    ~LoopbackServer() {
        stopping_ = true;
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<u_short>(port_));
        const SOCKET last = socket(AF_INET, SOCK_STREAM, 0); // wakes the thread, which closing would not
        connect(last, reinterpret_cast<sockaddr*>(&address), sizeof address);
        closesocket(last);
        thread_.join();
        closesocket(socket_);
        WSACleanup();
    }

    std::string address(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(port_) + path;
    }

private:
    void serve() {
        std::vector<SOCKET> silent;
        while (true) {
            const SOCKET client = accept(socket_, nullptr, nullptr);
            if (client == INVALID_SOCKET || stopping_) {
                closesocket(client);
                break;
            }
            char request[4096] = {};
            recv(client, request, sizeof request - 1, 0);
            const std::string text(request);
            const std::size_t start = text.find(' ') + 1;
            const auto answer = answers_.find(text.substr(start, text.find(' ', start) - start));
            if (answer == answers_.end()) {
                silent.push_back(client);
                continue;
            }
            send(client, answer->second.data(), static_cast<int>(answer->second.size()), 0);
            shutdown(client, SD_SEND);
            closesocket(client);
        }
        for (const SOCKET client : silent) {
            closesocket(client);
        }
    }

    std::map<std::string, std::string> answers_;
    SOCKET socket_ = INVALID_SOCKET;
    int port_ = 0;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

std::string reply(const std::string& body, const std::string& status = "200 OK",
                  const std::string& more = {}) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + more +
           "Connection: close\r\n\r\n" + body;
}

HttpAnswer waitFor(HttpGet& get) {
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (std::chrono::steady_clock::now() < deadline) {
        if (const auto answer = get.answer()) {
            return *answer;
        }
        std::this_thread::sleep_for(1ms);
    }
    return {0, {}, "the test's patience is over"};
}

} // namespace

TEST(HttpGet, answersWithinItsBounds) {
    const std::string full(1000, 'x');
    const LoopbackServer server(
        {{"/ok", reply("hello")},
         {"/full", reply(full)},
         {"/long", reply(full + "x")},
         {"/missing", reply("gone", "404 Not Found")},
         {"/elsewhere", reply("", "302 Found", "Location: http://127.0.0.1:1/\r\n")}});
    struct Case {
        std::string address;
        int status;
        std::string body;
        std::string error;
    };
    const Case cases[] = {
        {server.address("/ok"), 200, "hello", ""},
        {server.address("/full"), 200, full, ""},
        {server.address("/long"), 0, "",
         "The answer of " + server.address("/long") + " is longer than 1000 bytes"},
        {server.address("/missing"), 404, "gone", ""},
        {server.address("/elsewhere"), 302, "", ""},
        {server.address("/silent"), 0, "",
         "Could not fetch " + server.address("/silent") + ": Timeout was reached"},
        {"http://example.org/", 0, "", "Not an https address: http://example.org/"},
        {"http://localhost.example.org/", 0, "", "Not an https address: http://localhost.example.org/"},
    };
    for (const Case& c : cases) {
        HttpRequest request;
        request.address = c.address;
        request.mostBytes = 1000;
        request.timeout = 1500ms;
        const HttpAnswer answer = waitFor(*HttpGet::start(request));
        EXPECT_EQ(answer.status, c.status) << c.address;
        EXPECT_EQ(answer.body, c.body) << c.address;
        EXPECT_EQ(answer.error, c.error) << c.address;
    }
}

TEST(HttpGet, cancelsAtOnce) {
    const LoopbackServer server({});
    HttpRequest request;
    request.address = server.address("/silent");
    auto get = HttpGet::start(request);
    std::this_thread::sleep_for(300ms);
    EXPECT_FALSE(get->answer());
    const auto start = std::chrono::steady_clock::now();
    get.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
}
