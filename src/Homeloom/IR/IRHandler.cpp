// Registers an infrared device with the platform.
#include "Homeloom/IR/IRHandler.h"

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/IR/CIROnboardingInfo.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

void IRHandler::OnboardIRDevice(const std::shared_ptr<CTransaction>& transaction,
                                const std::shared_ptr<IPropertyListHelper>& list) {
    const std::string locationId = list->GetString(Names::LOCATION_ID);
    if (locationId.empty()) {
        throw CException("location id empty!", kErrorEmptyArgument);
    }
    const CIrOnboardingInfo info(list);
    const std::string body = info.GenerateRequestBody();
    std::string text;
    const int ret = _agent.CreateIRDevice(locationId, body, text);
    HL_LOGI("tessel_ret:%d, response:%s", ret, text.c_str());

    const json::JsonValue response = json::JsonValue::Create(text);
    const json::JsonValue errorCode = response["errorCode"];
    const json::JsonValue deviceId = response["deviceId"];
    OnboardIRDeviceParam param(transaction);
    param.result = errorCode.isNull() && deviceId.isString() && ret == 0;
    param.codeset = info.GetCodeset();
    if (deviceId.isString()) {
        // Also of a failure: the device may be there, half made.
        param.deviceId = deviceId.asString();
    }
    Reporter::Report(param);
}

std::string IRHandler::GetParentIdOfIRDevice(const std::string& deviceJson) const {
    return CHLUtil::GetParentIdOfIRDevice(deviceJson);
}

}  // namespace VMFramework::HomeLoom
