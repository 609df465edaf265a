// Capability commands of a camera, among them the one that sets up a talk and is answered by a later event.

#include <exception>
#include <sstream>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kAnswerAttribute[] = "sdpAnswer";

void ReportCommand(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceId, bool result,
                   const std::string& data) {
    ExecuteCommandParam param(transaction);
    param.result = result;
    param.deviceId = deviceId;
    param.data = data;
    Reporter::Report(param);
}

}  // namespace

void CameraDevice::RequestExecuteCommand(const std::shared_ptr<CTransaction>& transaction, const std::string& component,
                                         const std::string& capability, const std::string& command,
                                         const std::string& arguments) {
    const std::string id = GetId();
    if (component.empty() || capability.empty() || command.empty()) {
        HL_LOGE("parameter is empty, device_id : %s, component : %s, capability : %s, command : %s", id.c_str(),
                component.c_str(), capability.c_str(), command.c_str());
        ReportCommand(transaction, id, false, "");
        return;
    }
    // Before the arguments are looked at: the event may come before the call returns.
    addTransaction(transaction);
    auto list = json::JsonValue::CreateArray();
    for (const std::string& argument : getParsedCommandArguments(arguments)) {
        list.append(argument);
    }
    auto entry = json::JsonValue::CreateObject();
    entry.set(Names::COMPONENT, component);
    entry.set(Names::CAPABILITY, capability);
    entry.set(Names::COMMAND, command);
    entry.set("arguments", list);
    auto commands = json::JsonValue::CreateArray();
    commands.append(entry);
    auto body = json::JsonValue::CreateObject();
    body.set("commands", commands);
    const std::string request = body.toString();

    std::string response;
    const int ret = _agent.ExecuteCoreDevice(id, request, response);
    HL_LOGI("req_body:%s, response_json: %s", request.c_str(), response.c_str());
    if (ret != 0) {
        HL_LOGE("request execute command failed : %d", ret);
        ReportCommand(transaction, id, false, "");
        takeTransaction();
    }
}

void CameraDevice::HandleWebrtcDeviceEvent(const std::string& json) {
    const auto event = json::JsonValue::Create(json);
    if (event[Names::ATTRIBUTE].asString() != kAnswerAttribute) {
        HL_LOGI("attribute is not sdpAnswer, do not handle");
        return;
    }
    const auto transaction = takeTransaction();
    if (!transaction) {
        HL_LOGI("transaction is null, do not report, device_id : %s, json_str : %s", GetId().c_str(), json.c_str());
        return;
    }
    ReportCommand(transaction, GetId(), true, json);
}

void CameraDevice::RequestGetStatusOfCapability(const std::shared_ptr<CTransaction>& transaction,
                                                const std::string& component, const std::string& capability) {
    GetCapabilityStatusParam param(transaction);
    param.deviceId = GetId();
    if (component.empty() || capability.empty()) {
        HL_LOGE("parameter is empty, device_id : %s, component : %s, capability : %s", param.deviceId.c_str(),
                component.c_str(), capability.c_str());
    } else {
        param.result = _agent.GetCoreDeviceCapabilityStatus(param.deviceId, component, capability, param.data) == 0;
    }
    Reporter::Report(param);
}

// As std::getline splits: empty fields stay, and there is none behind a trailing comma.
std::vector<std::string> CameraDevice::getParsedCommandArguments(const std::string& arguments) {
    if (arguments.empty()) {
        throw CException("command argument string is empty!", kErrorEmptyArgument);
    }
    std::vector<std::string> parsed;
    std::istringstream stream(arguments);
    for (std::string field; std::getline(stream, field, ',');) {
        parsed.push_back(field);
    }
    return parsed;
}

void CameraDevice::addTransaction(const std::shared_ptr<CTransaction>& transaction) {
    auto replaced = transaction;
    const std::lock_guard<std::mutex> lock(_commandMutex);
    _commandTransaction.swap(replaced);
}

std::shared_ptr<CTransaction> CameraDevice::takeTransaction() {
    const std::lock_guard<std::mutex> lock(_commandMutex);
    return std::exchange(_commandTransaction, nullptr);
}

}  // namespace VMFramework::HomeLoom
