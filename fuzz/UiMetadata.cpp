// The UI metadata of a model, and a value that all properties of a device have: "DOCUMENT\n----\nVALUE".

#include <memory>

#include <VMFramework/JsonValue.h>

#include "Homeloom/Devices/Device.h"
#include "Homeloom/Devices/Property.h"
#include "Homeloom/Devices/Resource.h"
#include "Homeloom/UIMeta/Metadata.h"
#include "support/Input.h"

using namespace VMFramework::HomeLoom;

namespace {

constexpr char kVid[] = "VID";

std::shared_ptr<Device> makeDevice(const Metadata& metadata, const std::string& value, const std::string& type) {
    Device::_deviceInfo info;
    info.device_id = "device";
    info.vid = kVid;
    info.device_type = type;
    auto device = std::make_shared<Device>(info);
    for (const std::string& uri : metadata.GetSubscribeList(kVid)) {
        device->AddResource(std::make_shared<Resource>(uri));
        for (const std::string& name : metadata.GetPropertyNameList(kVid, uri)) {
            auto property = std::make_shared<Property>(name);
            property->SetValue(value);
            device->FindResource(uri, false)->AddProperty(property);
        }
    }
    return device;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto texts = fuzz::texts(data, size, 2);
    Metadata& metadata = Metadata::GetInstance();
    metadata.ClearMetadataMaps();
    if (!metadata.ParseMetadata(kVid, texts[0])) {
        return 0;
    }
    for (const char* type : {"oic.d.washer", "oic.d.tv", "x.com.hl.d.remotecontroller", "oic.d.camera"}) {
        const auto device = makeDevice(metadata, texts[1], type);
        metadata.SetDeviceStateText(device);
        metadata.GetPresentation(device);
        metadata.UpdateDeviceIconUrl(device);
        metadata.GetStreamURI(device);
        // The first action, and again by its name.
        std::string uri;
        for (int i = 0; i < 2; ++i) {
            std::string property;
            std::string next;
            std::string representation;
            if (metadata.GetDeviceMainAction(device, uri, property, next)) {
                device->GetRcpValue(uri, property, next, representation);
            }
            uri = metadata.ActionUrl(device);
        }
    }
    return 0;
}
