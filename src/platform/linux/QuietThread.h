// Threads that no signal of the host's ever lands on, and that no broken connection can end the process from.
#pragma once

#include <csignal>
#include <pthread.h>
#include <thread>
#include <utility>

namespace Platform {

template <typename Run>
std::thread startQuietThread(Run run) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before); // a new thread starts with its maker's mask
    try {
        std::thread thread(std::move(run));
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        return thread;
    } catch (...) {
        pthread_sigmask(SIG_SETMASK, &before, nullptr);
        throw;
    }
}

} // namespace Platform
