#ifndef QRA_APPS_QRA_INTERRUPT_H
#define QRA_APPS_QRA_INTERRUPT_H

#include <functional>

/// Turns the first SIGINT, SIGTERM or SIGHUP into an orderly end: what waits is told, and the command unwinds
/// as after any other failure. A second one ends the process at once.
namespace interrupt {

/// Blocks the signals in this thread and all that it starts, and waits for them on a thread of its own. Call
/// once, first thing in main().
void install();

bool requested();

/// For the child side of a fork: gives the child the signals back.
void restore_signals_in_child();

/// While it lives, `call` runs once when a signal comes, on the signal thread; at once, on the caller's
/// thread, when one has come already. The destructor waits for a running call. One at a time.
class Reaction {
public:
    explicit Reaction(std::function<void()> call);
    ~Reaction();
    Reaction(const Reaction&) = delete;
    Reaction& operator=(const Reaction&) = delete;
};

}  // namespace interrupt

#endif
