#ifndef HOMELOOM_SIMULATOR_HANDOVER_H
#define HOMELOOM_SIMULATOR_HANDOVER_H

#include <functional>
#include <memory>

namespace simulator {

/// What one call of the plug-in has handed to drivers of devices. The call is answered when the last of them has told
/// its verdict. Needs the world's mutex.
struct Handover {
    int open = 0;
    bool isRefused = false;       // by one of them
    std::function<void()> ended;  // null: somebody waits on World::verdicts, or nobody
};
using HandoverPtr = std::shared_ptr<Handover>;

}  // namespace simulator

#endif
