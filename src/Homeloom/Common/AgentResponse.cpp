// Reads the verdict of a platform response.
#include "Homeloom/Common/AgentResponse.h"

#include <exception>

#include <VMFramework/JsonValue.h>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

std::string GetResponseMessage(const std::string& json) {
    try {
        const auto response = json::JsonValue::Create(json);
        const auto message = response["message"];
        if (message.isNull()) {
            HL_LOGE("message parsing failed");
            return {};
        }
        return message.asString();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        return {};
    }
}

}  // namespace VMFramework::HomeLoom
