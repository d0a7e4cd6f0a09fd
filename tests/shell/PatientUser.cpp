// Message boxes hold the host up until somebody answers. In this program somebody does, and never says a word.
#include <windows.h>

#include <atomic>
#include <thread>

namespace {

class PatientUser {
public:
    PatientUser() : thread_([this] { answerAll(); }) {}
    ~PatientUser() {
        gone_ = true;
        thread_.join();
    }
    PatientUser(const PatientUser&) = delete;
    PatientUser& operator=(const PatientUser&) = delete;

private:
    void answerAll() {
        while (!gone_) {
            if (const HWND box = FindWindowW(L"#32770", L"Murmelon")) {
                DWORD process = 0;
                GetWindowThreadProcessId(box, &process);
                if (process == GetCurrentProcessId()) {
                    PostMessageW(box, WM_COMMAND, IDOK, 0);
                }
            }
            Sleep(10);
        }
    }

    std::atomic<bool> gone_{false};
    std::thread thread_;
};

const PatientUser user;

} // namespace
