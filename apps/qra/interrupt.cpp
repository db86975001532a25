#include "apps/qra/interrupt.h"

#include <signal.h>
#include <unistd.h>

#include <mutex>
#include <thread>
#include <utility>

#include "apps/qra/exit_status.h"

namespace interrupt {
namespace {

/// Never destroyed: the signal thread uses it until the process has gone.
struct State {
    std::mutex mutex;  // covers both fields
    bool requested = false;
    std::function<void()> reaction;
};

State& state() {
    static State* const state = new State;
    return *state;
}

/// Those of the three that whoever started us (nohup, a shell's background job) has not set to be ignored.
sigset_t handled_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            sigaddset(&signals, number);
        }
    }
    return signals;
}

void wait_for_signals() {
    const sigset_t signals = handled_signals();
    for (int number = 0; sigwait(&signals, &number) == 0;) {
        const std::lock_guard<std::mutex> lock(state().mutex);
        if (state().requested) {
            _exit(static_cast<int>(ExitStatus::RequestFailed));
        }
        state().requested = true;
        if (state().reaction) {
            state().reaction();
        }
    }
}

}  // namespace

void install() {
    const sigset_t signals = handled_signals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::thread(wait_for_signals).detach();
}

bool requested() {
    const std::lock_guard<std::mutex> lock(state().mutex);
    return state().requested;
}

void restore_signals_in_child() {
    const sigset_t signals = handled_signals();
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

Reaction::Reaction(std::function<void()> call) {
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().reaction = std::move(call);
    if (state().requested) {
        state().reaction();
    }
}

Reaction::~Reaction() {
    const std::lock_guard<std::mutex> lock(state().mutex);
    state().reaction = nullptr;
}

}  // namespace interrupt
