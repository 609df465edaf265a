#ifndef HOMELOOM_PLATFORM_VMFRAMEWORK_CDIRECTINVOKER_H
#define HOMELOOM_PLATFORM_VMFRAMEWORK_CDIRECTINVOKER_H

#include <functional>

namespace VMFramework::TPL {

/// The framework's invoker without a thread: it calls the function at once on the calling thread and lets
/// its exceptions pass.
class CDirectInvoker {
public:
    static CDirectInvoker& GetInstance();

    void Invoke(const std::function<void()>& function);

private:
    CDirectInvoker() = default;
};

}  // namespace VMFramework::TPL

#endif
