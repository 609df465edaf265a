// Facade: core devices, their documents and commands, infrared devices, and the event stream.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::GetCoreDeviceList(homeloom_core_device_h*& list, int& count) {
    return _AwaitList<GetCoreDeviceListParam>({}, list, count, homeloom_core_get_device_list_async, _CoreDeviceListCb);
}

int TesselHandler::GetCoreDeviceString(homeloom_core_device_h device, int field, std::string& value) {
    return _AccessText("device_h is null", homeloom_core_device_get_string, device, field, value);
}

int TesselHandler::CoreDeviceListDestroy(homeloom_core_device_h* list, int count) {
    return _DestroyList("device_list_h is null", homeloom_core_device_destroy, list, count);
}

int TesselHandler::GetCoreDeviceJson(const std::string& deviceId, std::string& resultJson) {
    return _AwaitText<GetCoreDeviceJsonParam>({{deviceId, "device_id is empty"}}, resultJson,
                                              homeloom_core_get_device_json_async, deviceId, _CoreDeviceJsonCb);
}

int TesselHandler::GetCoreDeviceListJson(const std::string& filter, std::string& resultJson) {
    return _AwaitText<GetCoreDeviceListJsonParam>({}, resultJson, homeloom_core_get_device_list_json_async, filter,
                                                  _CoreDeviceListJsonCb);
}

int TesselHandler::ExecuteCoreDevice(const std::string& deviceId, const std::string& jsonCommand,
                                     std::string& responseJson) {
    return _CallForText({{deviceId, "device_id is empty"}, {jsonCommand, "json_str_command is empty"}}, responseJson,
                        homeloom_core_execute_device, deviceId, jsonCommand);
}

int TesselHandler::GetCoreDeviceStatus(const std::string& deviceId, std::string& statusJson) {
    return _CallForText({{deviceId, "device_id is empty"}}, statusJson, homeloom_core_get_device_status, deviceId);
}

int TesselHandler::GetCoreDeviceComponentStatus(const std::string& deviceId, const std::string& component,
                                                std::string& statusJson) {
    return _CallForText({{deviceId, "device_id is empty"}, {component, "component_id is empty"}}, statusJson,
                        homeloom_core_get_device_component_status, deviceId, component);
}

int TesselHandler::GetCoreDeviceCapabilityStatus(const std::string& deviceId, const std::string& component,
                                                 const std::string& capability, std::string& statusJson) {
    return _CallForText({{deviceId, "device_id is empty"},
                         {component, "component_id is empty"},
                         {capability, "capability_id is empty"}},
                        statusJson, homeloom_core_get_device_capability_status, deviceId, component, capability);
}

int TesselHandler::GetCanvas(const std::string& presentationId, const std::string& manufacturerName,
                             std::string& document) {
    return _CallForText(
        {{presentationId, "presentation_id is empty"}, {manufacturerName, "manufacturer_name is empty"}}, document,
        homeloom_core_get_device_presentation, presentationId, manufacturerName);
}

int TesselHandler::SetCoreSSECb(int mask, homeloom_core_sse_cb cb, void* userData) {
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_core_set_sse_cb, mask, cb, userData);
}

int TesselHandler::UnsetCoreSSECb() {
    return _Call({}, homeloom_core_unset_sse_cb);
}

int TesselHandler::CreateIRDevice(const std::string& locationId, const std::string& requestBody,
                                  std::string& responseJson) {
    return _CallForText({{locationId, "location_id is empty"}, {requestBody, "request_body is empty"}}, responseJson,
                        homeloom_core_create_ir_device, locationId, requestBody);
}

int TesselHandler::GetIRDevice(const std::string& deviceId, std::string& responseJson) {
    return _CallForText({{deviceId, "device_id is empty"}}, responseJson, homeloom_core_get_ir_device, deviceId);
}

}  // namespace VMFramework::HomeLoom
