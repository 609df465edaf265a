// Reads the verdict of a platform response.
#include "Homeloom/Common/AgentResponse.h"

#include <VMFramework/JsonValue.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

std::string GetResponseMessage(const std::string& json) {
    return GuardedOr(std::string(), [&]() -> std::string {
        const auto response = json::JsonValue::Create(json);
        const auto message = response["message"];
        if (message.isNull()) {
            HL_LOGE("message parsing failed");
            return {};
        }
        return message.asString();
    });
}

}  // namespace VMFramework::HomeLoom
