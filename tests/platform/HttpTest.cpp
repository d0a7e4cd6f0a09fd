#include "LoopbackServer.h"

#include "platform/HttpGet.h"
#include "platform/UpdateCheck.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

using namespace Platform;
using Testing::LoopbackServer;
using Testing::reply;
using namespace std::chrono_literals;

namespace {

HttpAnswer waitFor(HttpGet& get) {
    const auto deadline = std::chrono::steady_clock::now() + 5s;
    while (std::chrono::steady_clock::now() < deadline) {
        if (const auto answer = get.answer()) {
            return *answer;
        }
        std::this_thread::sleep_for(1ms);
    }
    return {0, {}, "the test's patience is over"};
}

TEST(HttpGet, AnswersWithinItsBounds) {
    const std::string full(1000, 'x');
    const LoopbackServer server({{"/ok", reply("hello")},
                                 {"/full", reply(full)},
                                 {"/long", reply(full + "x")},
                                 {"/endless", "HTTP/1.1 200 OK\r\n\r\n" + full + full},
                                 {"/missing", reply("gone", "404 Not Found")},
                                 {"/elsewhere", reply("", "302 Found", "Location: http://127.0.0.1:1/\r\n")},
                                 {"/half", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"}});
    struct Case {
        std::string address;
        int status;
        std::string body;
        std::string error;
    };
    const auto at = [&](const char* path) { return server.address(path); };
    const std::string tooLong = " is longer than 1000 bytes";
    const Case cases[] = {
        {at("/ok"), 200, "hello", ""},
        {at("/full"), 200, full, ""},
        {at("/long"), 0, "", "The answer of " + at("/long") + tooLong},
        {at("/endless"), 0, "", "The answer of " + at("/endless") + tooLong},
        {at("/missing"), 404, "gone", ""},
        {at("/elsewhere"), 302, "", ""},
        {at("/half"), 0, "", "Could not fetch " + at("/half") + ": Transferred a partial file"},
        {at("/silent"), 0, "", "Could not fetch " + at("/silent") + ": Timeout was reached"},
        {"http://127.0.0.1:1/", 0, "", "Could not fetch http://127.0.0.1:1/: Couldn't connect to server"},
        {"http://example.com/", 0, "", "Not an https address: http://example.com/"},
        {"http://127.0.0.1.example.com/", 0, "", "Not an https address: http://127.0.0.1.example.com/"},
        {"file:///etc/passwd", 0, "", "Not an https address: file:///etc/passwd"}};
    for (const Case& c : cases) {
        HttpRequest request;
        request.address = c.address;
        request.mostBytes = 1000;
        request.timeout = 1s;
        const auto get = HttpGet::start(request);
        const HttpAnswer answer = waitFor(*get);
        EXPECT_EQ(answer.status, c.status) << c.address;
        EXPECT_EQ(answer.body, c.body) << c.address;
        EXPECT_EQ(answer.error, c.error) << c.address;
    }
}

TEST(HttpGet, IsCancelledAtOnceAndLeavesNothing) {
    const LoopbackServer server({});
    const auto openFiles = [] {
#ifdef __linux__
        const auto files = std::filesystem::directory_iterator("/proc/self/fd");
        return std::distance(begin(files), end(files));
#else
        return 0;
#endif
    };
    HttpRequest request;
    request.address = server.address("/silent");
    HttpRequest refused;
    refused.address = "http://127.0.0.1:1/";
    waitFor(*HttpGet::start(refused)); // now the library has opened what it keeps
    const auto before = openFiles();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 5; ++i) {
        const auto get = HttpGet::start(request);
        std::this_thread::sleep_for(5ms);
        EXPECT_FALSE(get->answer());
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    EXPECT_LE(openFiles(), before + 5) << "the server's ends alone stay open";
}

TEST(UpdateCheck, TellsOfNewerVersionsOnly) {
    const LoopbackServer server({{"/newer", reply("1.6.10\r\nhttps://example.com/new\n")},
                                 {"/bare", reply("2")},
                                 {"/same", reply("1.6.2\n")},
                                 {"/older", reply("1.5.99")},
                                 {"/page", reply("<html>9.9</html>")},
                                 {"/script", reply("1.7\njavascript:alert(1)")},
                                 {"/empty", reply("")},
                                 {"/error", reply("9.9", "500 Oops")}});
    struct Case {
        const char* path;
        const char* version;
        const char* page;
    };
    const Case cases[] = {{"/newer", "1.6.10", "https://example.com/new"},
                          {"/bare", "2", ""},
                          {"/same", "", ""},
                          {"/older", "", ""},
                          {"/page", "", ""},
                          {"/script", "1.7", ""},
                          {"/empty", "", ""},
                          {"/error", "", ""}};
    for (const Case& c : cases) {
        UpdateCheck check(server.address(c.path), "1.6.2");
        EXPECT_FALSE(check.poll());
        check.start();
        check.start();
        std::optional<UpdateCheck::Update> update;
        while (check.asking() && !update) {
            update = check.poll();
        }
        EXPECT_EQ(update ? update->version : "", c.version) << c.path;
        EXPECT_EQ(update ? update->page : "", c.page) << c.path;
    }
    UpdateCheck nowhere(UpdateCheck::builtInAddress(), "1.6.2");
    nowhere.start();
    EXPECT_FALSE(nowhere.asking()) << "a build without an address asks nobody";
}

TEST(UpdateCheck, ComparesVersionsByTheirNumbers) {
    struct Case {
        const char* candidate;
        const char* current;
        std::optional<bool> newer;
    };
    const Case cases[] = {
        {"1.10", "1.9", true},    {"1.6", "1.6.0", false},  {"1.6.0.1", "1.6", true}, {"", "1", {}},
        {"1.", "1", {}},          {"1.x", "1", {}},         {"-1", "1", {}},          {"v2", "1", {}},
        {"99999999999", "1", {}}, {"1.6.2", "1.6.3", false}};
    for (const Case& c : cases) {
        EXPECT_EQ(isNewerVersion(c.candidate, c.current), c.newer) << c.candidate;
    }
}

} // namespace
