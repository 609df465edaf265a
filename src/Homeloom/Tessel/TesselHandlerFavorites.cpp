// Facade: favorites and their migration.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::CreateFavorite(const std::string& locationId, const std::string& favoriteInfo,
                                  homeloom_core_favorite_h& favorite) {
    return _Call({{locationId, "location_id is empty"}, {favoriteInfo, "favorite_info is empty"}},
                 homeloom_core_create_favorite, locationId, favoriteInfo, &favorite);
}

int TesselHandler::DeleteFavorite(const std::string& locationId, const std::string& favoriteId) {
    if (favoriteId.empty()) {
        return _Call({{locationId, "location_id is empty"}}, homeloom_core_delete_favorites, locationId);
    }
    return _Call({{locationId, "location_id is empty"}}, homeloom_core_delete_favorite, locationId, favoriteId);
}

int TesselHandler::ReplaceFavorites(const std::string& locationId, const std::string& favoriteInfoArray,
                                    homeloom_core_favorite_h*& list, int& count) {
    return _Call({{locationId, "location_id is empty"}, {favoriteInfoArray, "favorite_info_array is empty"}},
                 homeloom_core_replace_favorites, locationId, favoriteInfoArray, &list, &count);
}

int TesselHandler::GetFavoriteList(const std::string& locationId, homeloom_core_favorite_h*& list, int& count) {
    return _AwaitList<GetFavoriteListParam>({{locationId, "location_id is empty"}}, list, count,
                                            homeloom_core_get_favorite_list_async, locationId, _CoreFavoriteListCb);
}

int TesselHandler::GetFavoriteInt(homeloom_core_favorite_h favorite, int field, int& value) {
    return _Access("favorite_h is null", homeloom_core_favorite_get_int, favorite, field, &value);
}

int TesselHandler::GetFavoriteString(homeloom_core_favorite_h favorite, int field, std::string& value) {
    return _AccessText("favorite_h is null", homeloom_core_favorite_get_string, favorite, field, value);
}

int TesselHandler::DestroyFavoriteList(homeloom_core_favorite_h* list, int count) {
    return _DestroyList("favorite_list_h is null", homeloom_core_favorite_destroy, list, count);
}

int TesselHandler::DestroySingleFavorite(homeloom_core_favorite_h favorite) {
    return _Access("favorite_h is null", homeloom_core_favorite_destroy, favorite);
}

int TesselHandler::GetFavoriteMigrationStatus(const std::string& locationId, bool& isMigrated,
                                              std::string& lastUpdatedDate, std::string& deviceModel) {
    char* date = nullptr;
    char* model = nullptr;
    const int ret = _Call({{locationId, "location_id is empty"}}, homeloom_core_get_favorite_migration_status,
                          locationId, &isMigrated, &date, &model);
    TakeText(date, lastUpdatedDate);
    TakeText(model, deviceModel);
    return ret;
}

int TesselHandler::UpdateFavoriteMigrationStatus(const std::string& locationId, const std::string& statusInfo,
                                                 std::string& statusResult) {
    return _CallForText({{locationId, "location_id is empty"}, {statusInfo, "status_info is empty"}}, statusResult,
                        homeloom_core_update_favorite_migration_status, locationId, statusInfo);
}

}  // namespace VMFramework::HomeLoom
