// Facade: groups, which are the agent's older form of locations and rooms.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::GetGroupList(homeloom_client_group_h*& list, int type, int& count) {
    homeloom_client_group_h* groups = nullptr;
    int size = 0;
    const int ret = _Call({}, homeloom_client_get_group_list, &groups, type, &size);
    if (groups != nullptr && size > 0) {
        list = groups;
        count = size;
        return ret;
    }
    HL_LOGE("%s", groups == nullptr ? "group handle is null" : "group_h count <= 0");
    std::free(groups);
    list = nullptr;
    count = 0;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        return ret;
    }
    // A home without rooms is an ordinary one, a home without locations is not.
    return type == HOMELOOM_CLIENT_GROUP_TYPE_ROOM ? HOMELOOM_CLIENT_ERROR_NO_DATA
                                                   : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
}

int TesselHandler::GroupGetString(homeloom_client_group_h group, int propertyId, std::string& value) {
    return _AccessText("group_h is null", homeloom_client_group_get_string, group, propertyId, value);
}

int TesselHandler::GroupDestroy(homeloom_client_group_h* list, int count) {
    return _DestroyList("group_list_h is null", homeloom_client_group_destroy, list, count);
}

int TesselHandler::SetGroupListUpdatedCb(homeloom_client_group_list_updated_cb cb, void* userData) {
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_group_list_updated_cb, cb, userData);
}

int TesselHandler::UnsetGroupListUpdatedCb() {
    return _Call({}, homeloom_client_unset_group_list_updated_cb);
}

}  // namespace VMFramework::HomeLoom
