// WinINet fetches, on a thread that ends with the object.
#include "platform/HttpGet.h"

#include "platform/win32/SystemText.h"

#include <windows.h>

#include <wininet.h>

#include <array>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace Platform {

namespace {

// The system has no words for these; they are those that curl has elsewhere.
std::string internetWords(DWORD error) {
    switch (error) {
    case ERROR_INTERNET_TIMEOUT:
        return "Timeout was reached";
    case ERROR_INTERNET_NAME_NOT_RESOLVED:
        return "Couldn't resolve host name";
    case ERROR_INTERNET_CANNOT_CONNECT:
        return "Couldn't connect to server";
    case ERROR_INTERNET_CONNECTION_ABORTED:
    case ERROR_INTERNET_CONNECTION_RESET:
        return "Transferred a partial file";
    case ERROR_INTERNET_SECURITY_CHANNEL_ERROR:
        return "SSL connect error";
    default:
        return systemWords(error);
    }
}

// What the server says of the answer's length; nullopt when it does not.
std::optional<DWORD> announcedLength(HINTERNET document) {
    DWORD length = 0;
    DWORD size = sizeof length;
    const bool known = HttpQueryInfoW(document, HTTP_QUERY_CONTENT_LENGTH | HTTP_QUERY_FLAG_NUMBER, &length, &size,
                                      nullptr) != 0;
    return known ? std::optional(length) : std::nullopt;
}

// What the thread works on. It outlives the object when the system does not let go of a call.
class Fetch {
public:
    Fetch(HttpRequest request, HINTERNET session) : request_(std::move(request)), session_(session) {}
    ~Fetch() { cancel(); }
    Fetch(const Fetch&) = delete;
    Fetch& operator=(const Fetch&) = delete;

    void run() {
        // No redirections: they could lead away from what may be asked.
        constexpr DWORD kFlags = INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_CACHE_WRITE |
                                 INTERNET_FLAG_RELOAD | INTERNET_FLAG_PRAGMA_NOCACHE |
                                 INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI | INTERNET_FLAG_NO_AUTH;
        if (const HINTERNET document =
                InternetOpenUrlW(session(), toWide(request_.address).c_str(), nullptr, 0, kFlags, 0)) {
            receive(document);
            InternetCloseHandle(document);
        } else {
            failed(GetLastError());
        }
        const std::lock_guard lock(mutex_);
        ended_ = true;
        end_.notify_all();
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

    bool endsWithin(std::chrono::milliseconds patience) {
        std::unique_lock lock(mutex_);
        return end_.wait_for(lock, patience, [this] { return ended_; });
    }

    std::optional<HttpAnswer> answer() {
        const std::lock_guard lock(mutex_);
        return answer_;
    }

    // The first answer stays.
    void finish(HttpAnswer answer) {
        const std::lock_guard lock(mutex_);
        if (!answer_) {
            answer_ = std::move(answer);
        }
    }

    void failed(DWORD error) {
        finish({0, {}, "Could not fetch " + request_.address + ": " + internetWords(error)});
    }

private:
    void receive(HINTERNET document) {
        DWORD status = 0;
        DWORD size = sizeof status;
        if (!HttpQueryInfoW(document, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size,
                            nullptr)) {
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
                finish({0,
                        {},
                        "The answer of " + request_.address + " is longer than " +
                            std::to_string(request_.mostBytes) + " bytes"});
                return;
            }
            answer.body.append(block.data(), count);
        }
        // The end of a connection looks like the end of the answer.
        if (const auto announced = announcedLength(document); announced && answer.body.size() < *announced) {
            failed(ERROR_INTERNET_CONNECTION_ABORTED);
            return;
        }
        finish(std::move(answer));
    }

    HINTERNET session() {
        const std::lock_guard lock(mutex_);
        return session_;
    }

    const HttpRequest request_;
    std::mutex mutex_;
    std::condition_variable end_;
    HINTERNET session_;                // guarded by mutex_; null: cancelled
    std::optional<HttpAnswer> answer_; // guarded by mutex_
    bool ended_ = false;               // guarded by mutex_
};

class InternetHttpGet final : public HttpGet {
public:
    explicit InternetHttpGet(const HttpRequest& request)
        : address_(request.address), deadline_(Clock::now() + request.timeout) {
        const bool allowed = mayBeAsked(request.address);
        const HINTERNET session = allowed ? InternetOpenW(toWide(request.userAgent).c_str(),
                                                          INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0)
                                          : nullptr;
        const DWORD error = GetLastError();
        fetch_ = std::make_shared<Fetch>(request, session);
        if (!allowed) {
            fetch_->finish({0, {}, "Not an https address: " + request.address});
        } else if (!session) {
            fetch_->failed(error);
        } else {
            thread_ = std::thread([fetch = fetch_] { fetch->run(); });
        }
    }
    ~InternetHttpGet() override {
        constexpr std::chrono::milliseconds kPatience{200};
        fetch_->cancel();
        if (!thread_.joinable()) {
            return;
        }
        if (fetch_->endsWithin(kPatience)) {
            thread_.join();
            return;
        }
        // A look-up of a name, say, cannot be called off. The thread ends when the system lets it, so the
        // code that it then returns to has to stay.
        HMODULE module = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                           reinterpret_cast<LPCWSTR>(&internetWords), &module);
        thread_.detach();
    }
    InternetHttpGet(const InternetHttpGet&) = delete;
    InternetHttpGet& operator=(const InternetHttpGet&) = delete;

    // The system's own time limits are for single steps; the one for all of them is kept here.
    std::optional<HttpAnswer> answer() override {
        if (!fetch_->answer() && Clock::now() > deadline_) {
            fetch_->finish({0, {}, "Could not fetch " + address_ + ": Timeout was reached"});
            fetch_->cancel();
        }
        return fetch_->answer();
    }

private:
    using Clock = std::chrono::steady_clock;

    const std::string address_;
    const Clock::time_point deadline_;
    std::shared_ptr<Fetch> fetch_;
    std::thread thread_;
};

} // namespace

std::unique_ptr<HttpGet> HttpGet::start(HttpRequest request) {
    return std::make_unique<InternetHttpGet>(request);
}

} // namespace Platform
