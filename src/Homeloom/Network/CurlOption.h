#ifndef HOMELOOM_HOMELOOM_NETWORK_CURLOPTION_H
#define HOMELOOM_HOMELOOM_NETWORK_CURLOPTION_H

#include <KRCurl/KRCurlEasy.h>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

/// Sets an option and says, in the caller's name, which one failed; `name` is the option's name without its prefix.
template <typename Value>
bool SetCurlOption(KRCurl::KRCurlEasy& easy, KRCurl::KRCURL_OPTION_TYPE option, const Value& value, const char* name,
                   const Log::Place& caller = HL_CALLER) {
    if (!easy.setOption(option, value)) {
        HL_LOG_AT(DLOG_ERROR, caller, "setoption %s failed", name);
        return false;
    }
    return true;
}

}  // namespace VMFramework::HomeLoom

#endif
