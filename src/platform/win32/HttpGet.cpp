// WinINet fetches, on a thread that ends with the object.
#include "platform/HttpGet.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <wininet.h>

#include <array>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

namespace Platform {

namespace {

// Anything that leaves this machine is to be encrypted.
bool mayBeAsked(std::string_view address) {
    constexpr std::array<std::string_view, 3> kThisMachine{"http://127.0.0.1", "http://localhost",
                                                           "http://[::1]"};
    for (const std::string_view start : kThisMachine) {
        if (address.starts_with(start)) {
            const std::string_view rest = address.substr(start.size());
            return rest.empty() || rest.front() == ':' || rest.front() == '/';
        }
    }
    return address.starts_with("https://");
}

std::string internetWords(DWORD error) {
    return error == ERROR_INTERNET_TIMEOUT ? std::string("Timeout was reached") : systemWords(error);
}

class InternetHttpGet final : public HttpGet {
public:
    explicit InternetHttpGet(HttpRequest request)
        : request_(std::move(request)), deadline_(Clock::now() + request_.timeout) {
        if (!mayBeAsked(request_.address)) {
            finish({0, {}, "Not an https address: " + request_.address});
            return;
        }
        session_ = InternetOpenW(toWide(request_.userAgent).c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr,
                                 nullptr, 0);
        if (!session_) {
            failed(GetLastError());
            return;
        }
        auto patience = static_cast<DWORD>(request_.timeout.count());
        for (const DWORD option : {INTERNET_OPTION_CONNECT_TIMEOUT, INTERNET_OPTION_SEND_TIMEOUT,
                                   INTERNET_OPTION_RECEIVE_TIMEOUT}) {
            InternetSetOptionW(session_, option, &patience, sizeof patience);
        }
        thread_ = std::thread([this] { run(); });
    }
    ~InternetHttpGet() override {
        cancel();
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    InternetHttpGet(const InternetHttpGet&) = delete;
    InternetHttpGet& operator=(const InternetHttpGet&) = delete;

    // The system's own time limits are for single steps; the one for all of them is kept here.
    std::optional<HttpAnswer> answer() override {
        const bool late = Clock::now() > deadline_;
        {
            const std::lock_guard lock(mutex_);
            if (answer_ || !late) {
                return answer_;
            }
            answer_ = HttpAnswer{0, {}, "Could not fetch " + request_.address + ": Timeout was reached"};
        }
        cancel();
        return answer_;
    }

private:
    using Clock = std::chrono::steady_clock;

    void run() {
        // No redirections: they could lead away from what may be asked.
        constexpr DWORD kFlags = INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_CACHE_WRITE |
                                 INTERNET_FLAG_RELOAD | INTERNET_FLAG_PRAGMA_NOCACHE |
                                 INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI | INTERNET_FLAG_NO_AUTH;
        const HINTERNET document =
            InternetOpenUrlW(session(), toWide(request_.address).c_str(), nullptr, 0, kFlags, 0);
        if (!document) {
            failed(GetLastError());
            return;
        }
        receive(document);
        InternetCloseHandle(document);
    }

    void receive(HINTERNET document) {
        DWORD status = 0;
        DWORD size = sizeof status;
        if (!HttpQueryInfoW(document, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr)) {
            failed(GetLastError());
            return;
        }
        HttpAnswer answer{static_cast<int>(status), {}, {}};
        std::array<char, 4096> block;
        while (session()) {
            DWORD count = 0;
            if (!InternetReadFile(document, block.data(), static_cast<DWORD>(block.size()), &count)) {
                failed(GetLastError());
                return;
            }
            if (count == 0) {
                break;
            }
            if (answer.body.size() + count > request_.mostBytes) {
                finish({0, {}, "The answer of " + request_.address + " is longer than " +
                                   std::to_string(request_.mostBytes) + " bytes"});
                return;
            }
            answer.body.append(block.data(), count);
        }
        finish(std::move(answer));
    }

    HINTERNET session() {
        const std::lock_guard lock(mutex_);
        return session_;
    }

    // Closing the session ends what goes on in it.
    void cancel() {
        HINTERNET session = nullptr;
        {
            const std::lock_guard lock(mutex_);
            session = std::exchange(session_, nullptr);
        }
        if (session) {
            InternetCloseHandle(session);
        }
    }

    void failed(DWORD error) {
        finish({0, {}, "Could not fetch " + request_.address + ": " + internetWords(error)});
    }

    void finish(HttpAnswer answer) {
        const std::lock_guard lock(mutex_);
        if (!answer_) {
            answer_ = std::move(answer);
        }
    }

    const HttpRequest request_;
    const Clock::time_point deadline_;
    std::mutex mutex_;
    HINTERNET session_ = nullptr;      // guarded by mutex_; null: cancelled
    std::optional<HttpAnswer> answer_; // guarded by mutex_
    std::thread thread_;
};

} // namespace

std::unique_ptr<HttpGet> HttpGet::start(HttpRequest request) {
    return std::make_unique<InternetHttpGet>(std::move(request));
}

} // namespace Platform
