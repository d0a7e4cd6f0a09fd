// libcurl fetches, on a thread that ends with the object. It is loaded when it is needed: the plug-in runs
// without.
#include "platform/HttpGet.h"

#include "platform/linux/DynamicLibrary.h"
#include "platform/linux/QuietThread.h"

#include <curl/curl.h>

#include <atomic>
#include <mutex>
#include <thread>

namespace Platform {

namespace {

struct Curl {
    decltype(&curl_global_init) globalInit;
    decltype(&curl_easy_init) easyInit;
    decltype(&curl_easy_setopt) setOption;
    decltype(&curl_easy_getinfo) getInfo;
    decltype(&curl_easy_strerror) errorText;
    decltype(&curl_easy_cleanup) easyCleanup;
    decltype(&curl_multi_init) multiInit;
    decltype(&curl_multi_add_handle) addHandle;
    decltype(&curl_multi_remove_handle) removeHandle;
    decltype(&curl_multi_perform) perform;
    decltype(&curl_multi_poll) poll;
    decltype(&curl_multi_wakeup) wakeUp;
    decltype(&curl_multi_info_read) readInfo;
    decltype(&curl_multi_cleanup) multiCleanup;

    // Null when the library is missing, or too old.
    static const Curl* get();
};

template <typename Function>
bool find(const DynamicLibrary& library, const char* name, Function*& function) {
    function = library.function<Function>(name);
    return function != nullptr;
}

bool load(Curl& curl) {
    const DynamicLibrary library{"libcurl.so.4", "libcurl-gnutls.so.4"};
    return find(library, "curl_global_init", curl.globalInit) &&
           find(library, "curl_easy_init", curl.easyInit) &&
           find(library, "curl_easy_setopt", curl.setOption) &&
           find(library, "curl_easy_getinfo", curl.getInfo) &&
           find(library, "curl_easy_strerror", curl.errorText) &&
           find(library, "curl_easy_cleanup", curl.easyCleanup) &&
           find(library, "curl_multi_init", curl.multiInit) &&
           find(library, "curl_multi_add_handle", curl.addHandle) &&
           find(library, "curl_multi_remove_handle", curl.removeHandle) &&
           find(library, "curl_multi_perform", curl.perform) && find(library, "curl_multi_poll", curl.poll) &&
           find(library, "curl_multi_wakeup", curl.wakeUp) &&
           find(library, "curl_multi_info_read", curl.readInfo) &&
           find(library, "curl_multi_cleanup", curl.multiCleanup) &&
           curl.globalInit(CURL_GLOBAL_DEFAULT) == CURLE_OK;
}

const Curl* Curl::get() {
    static Curl functions{};
    static const bool loaded = load(functions);
    return loaded ? &functions : nullptr;
}

class CurlHttpGet final : public HttpGet {
public:
    explicit CurlHttpGet(HttpRequest request) : request_(std::move(request)), curl_(Curl::get()) {
        if (!mayBeAsked(request_.address)) {
            finish("Not an https address: " + request_.address);
        } else if (!curl_) {
            finish("Install libcurl to fetch " + request_.address);
        } else if (multi_ = curl_->multiInit(); !multi_) {
            finish("Out of memory");
        } else {
            thread_ = startQuietThread([this] { run(); });
        }
    }
    ~CurlHttpGet() override {
        cancelled_.store(true, std::memory_order_release);
        if (multi_) {
            curl_->wakeUp(multi_);
        }
        if (thread_.joinable()) {
            thread_.join();
        }
        if (multi_) {
            curl_->multiCleanup(multi_);
        }
    }
    CurlHttpGet(const CurlHttpGet&) = delete;
    CurlHttpGet& operator=(const CurlHttpGet&) = delete;

    std::optional<HttpAnswer> answer() override {
        const std::lock_guard lock(mutex_);
        return answer_;
    }

private:
    void run() {
        CURL* const easy = curl_->easyInit();
        if (!easy) {
            finish("Out of memory");
            return;
        }
        prepare(easy);
        curl_->addHandle(multi_, easy);
        const CURLcode result = perform();
        long status = 0;
        curl_->getInfo(easy, CURLINFO_RESPONSE_CODE, &status);
        if (tooLong_) {
            finish("The answer of " + request_.address + " is longer than " +
                   std::to_string(request_.mostBytes) + " bytes");
        } else if (result != CURLE_OK) {
            finish("Could not fetch " + request_.address + ": " + curl_->errorText(result));
        } else {
            const std::lock_guard lock(mutex_);
            answer_ = HttpAnswer{static_cast<int>(status), std::move(body_), {}};
        }
        curl_->removeHandle(multi_, easy);
        curl_->easyCleanup(easy);
    }

    // No redirections: they could lead away from what may be asked.
    void prepare(CURL* easy) {
        curl_->setOption(easy, CURLOPT_URL, request_.address.c_str());
        curl_->setOption(easy, CURLOPT_USERAGENT, request_.userAgent.c_str());
        curl_->setOption(easy, CURLOPT_NOSIGNAL, 1L); // signals are the host's
        curl_->setOption(easy, CURLOPT_FOLLOWLOCATION, 0L);
        curl_->setOption(easy, CURLOPT_NOPROXY, "localhost,127.0.0.1,::1");
        curl_->setOption(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(request_.timeout.count()));
        curl_->setOption(easy, CURLOPT_QUICK_EXIT,
                         1L); // a look-up of a name may hang: cancelling does not wait
        curl_->setOption(easy, CURLOPT_WRITEFUNCTION, &CurlHttpGet::receive);
        curl_->setOption(easy, CURLOPT_WRITEDATA, this);
    }

    CURLcode perform() {
        constexpr int kWakeMilliseconds = 1000;
        int running = 1;
        while (running > 0 && !cancelled_.load(std::memory_order_acquire)) {
            if (curl_->perform(multi_, &running) != CURLM_OK) {
                return CURLE_FAILED_INIT;
            }
            if (running > 0) {
                curl_->poll(multi_, nullptr, 0, kWakeMilliseconds, nullptr);
            }
        }
        int left = 0;
        const CURLMsg* const message = curl_->readInfo(multi_, &left);
        return message && message->msg == CURLMSG_DONE ? message->data.result : CURLE_ABORTED_BY_CALLBACK;
    }

    static std::size_t receive(const char* bytes, std::size_t size, std::size_t count, void* self) {
        auto& get = *static_cast<CurlHttpGet*>(self);
        if (get.body_.size() + size * count > get.request_.mostBytes) {
            get.tooLong_ = true;
            return 0;
        }
        get.body_.append(bytes, size * count);
        return size * count;
    }

    void finish(std::string error) {
        const std::lock_guard lock(mutex_);
        answer_ = HttpAnswer{0, {}, std::move(error)};
    }

    const HttpRequest request_;
    const Curl* curl_;
    CURLM* multi_ = nullptr;
    std::string body_; // the thread's
    bool tooLong_ = false;
    std::atomic<bool> cancelled_{false}; // written by the destructor
    std::mutex mutex_;
    std::optional<HttpAnswer> answer_; // guarded by mutex_
    std::thread thread_;
};

} // namespace

std::unique_ptr<HttpGet> HttpGet::start(HttpRequest request) {
    return std::make_unique<CurlHttpGet>(std::move(request));
}

} // namespace Platform
