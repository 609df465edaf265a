#ifndef HOMELOOM_TESTS_UIMETA_UIMETATEST_H
#define HOMELOOM_TESTS_UIMETA_UIMETATEST_H

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <glib.h>
#include <gtest/gtest.h>
#include <vconf.h>

#include "Homeloom/Devices/Device.h"
#include "Homeloom/Devices/Property.h"
#include "Homeloom/Devices/Resource.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

/// Documents in tests are written with single quotes.
inline std::string Json(std::string text) {
    std::replace(text.begin(), text.end(), '\'', '"');
    return text;
}

/// A whole document around the members of its "data".
inline std::string Document(const std::string& data) {
    return Json("{'message':'SUCCESS','data':{" + data + "}}");
}

inline constexpr char kVid[] = "VID-1";

struct Value {
    std::string uri;
    std::string property;
    std::string value;
};

inline std::shared_ptr<Device> MakeDevice(const std::vector<Value>& values, const std::string& type = "oic.d.washer",
                                          DeviceStatus status = DEVICE_STATUS_CONNECTED) {
    Device::_deviceInfo info;
    info.device_id = "device-1";
    info.vid = kVid;
    info.device_type = type;
    info.status = status;
    auto device = std::make_shared<Device>(info);
    for (const Value& each : values) {
        device->AddResource(std::make_shared<Resource>(each.uri));
        auto property = std::make_shared<Property>(each.property);
        property->SetValue(each.value);
        device->FindResource(each.uri, false)->AddProperty(property);
    }
    return device;
}

/// Each case loads the metadata of the one model and asks it about a device.
class UIMetaTest : public testing::Test {
protected:
    void Load(const std::string& data) {
        metadata.ClearMetadataMaps();
        ASSERT_TRUE(metadata.ParseMetadata(kVid, Document(data))) << data;
    }

    /// Sets the TV's language and tells who watches it.
    static void SetLanguage(const char* value) {
        vconf_set_str("db/menu_widget/language", value);
        while (g_main_context_iteration(nullptr, FALSE) == TRUE) {
        }
    }

    Metadata& metadata = Metadata::GetInstance();
};

}  // namespace VMFramework::HomeLoom

#endif
