// Names the type of a reply for the log of a call that waits for it.
#include "Homeloom/Common/AsyncJob.h"

#include <cxxabi.h>

#include "Common/CText.h"

namespace VMFramework::HomeLoom {

std::string AsyncJobName(const std::type_info& param) {
    int status = 0;
    const OwnedText readable(abi::__cxa_demangle(param.name(), nullptr, nullptr, &status));
    const std::string name = readable ? readable.get() : param.name();
    // npos + 1 is 0: a name without namespaces stays whole.
    return name.substr(name.rfind(':') + 1);
}

}  // namespace VMFramework::HomeLoom
