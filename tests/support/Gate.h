#ifndef HOMELOOM_TESTS_SUPPORT_GATE_H
#define HOMELOOM_TESTS_SUPPORT_GATE_H

#include <future>

/// Holds up the one thread that passes it, until somebody opens it.
class Gate {
public:
    void pass() {
        _entered.set_value();
        _open.get_future().wait();
    }
    void waitUntilEntered() { _entered.get_future().wait(); }
    void open() { _open.set_value(); }

private:
    std::promise<void> _entered;
    std::promise<void> _open;
};

#endif
