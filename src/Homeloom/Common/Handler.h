#ifndef HOMELOOM_HOMELOOM_COMMON_HANDLER_H
#define HOMELOOM_HOMELOOM_COMMON_HANDLER_H

#include <atomic>
#include <string>

namespace VMFramework::HomeLoom {

/// Base of the subsystem handlers: a name for the log, and a quit flag that long loops look at.
class Handler {
public:
    /// 'name' is a label: no queue and no thread is behind it.
    explicit Handler(const std::string& name);
    virtual ~Handler();
    Handler(const Handler&) = delete;
    Handler& operator=(const Handler&) = delete;

    virtual void Quit();
    bool IsQuit() const;

private:
    std::atomic<bool> _quit{false};
    const std::string _name;
};

}  // namespace VMFramework::HomeLoom

#endif
