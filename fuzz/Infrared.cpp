// The TV's key map of a code set, and what a screen says of an air conditioner: "KEYS\n----\nSTATE".

#include <VMFramework/JsonValue.h>
#include <desktop/IrKeyMaps.h>

#include "Common/CException.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/IR/CIROnboardingInfo.h"
#include "support/Input.h"

using namespace VMFramework::HomeLoom;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto texts = fuzz::texts(data, size, 2);
    homeloom::desktop::ir::setKeyMap("set", texts[0]);
    for (const char* type : {"oic.d.airconditioner", "oic.d.fan", "oic.d.robotcleaner", "oic.d.airpurifier"}) {
        const auto list = IPropertyListHelper::Create();
        for (const char* key : {"brand", "display_name", "parent_id", "location_id", "room_id"}) {
            list->PushStringData(key, key);
        }
        list->PushStringData("codeset", "set");
        list->PushStringData("device_type", type);
        list->PushStringData("aircon_state", texts[1]);
        try {
            const std::string body = CIrOnboardingInfo(list).GenerateRequestBody();
            fuzz::require(!VMFramework::json::JsonValue::Create(body).isNull(), "a body is JSON");
        } catch (const std::exception&) {
            // The request's job logs it.
        }
    }
    return 0;
}
