// Requests about a location's favorites, and the favorites as one JSON text.
#include "Homeloom/Favorite/FavoriteHandler.h"

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Homeloom/Tessel/AgentList.h"

namespace VMFramework::HomeLoom {

namespace {

struct TextField {
    homeloom_core_favorite_field_e field;
    const char* key;
    const char* complaint;
};

// In the order of reading, which is that of the text as well; the order number comes last.
constexpr TextField kTextFields[] = {
    {HOMELOOM_CORE_FAVORITE_ID, Names::FAVORITE_ID, "get favorite id failed"},
    {HOMELOOM_CORE_FAVORITE_LOCATION_ID, Names::LOCATION_ID, "get favorite location id failed"},
    {HOMELOOM_CORE_FAVORITE_MEMBER_ID, "member_id", "get favorite member id failed"},
    {HOMELOOM_CORE_FAVORITE_MEMBER_TYPE, "member_type", "get favorite member type failed"},
    {HOMELOOM_CORE_FAVORITE_CREATE_DATE, "create_date", "get favorite create date failed"},
    {HOMELOOM_CORE_FAVORITE_LAST_UPDATE_DATE, "last_update_date", "get favorite last update date failed"},
};

}  // namespace

void FavoriteHandler::CreateFavorite(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                     const std::string& favoriteInfo) {
    HL_LOGI("create favorite");
    homeloom_core_favorite_h favorite = nullptr;
    const int ret = _agent.CreateFavorite(locationId, favoriteInfo, favorite);

    CreateFavoriteParam param(transaction);
    param.result = ret == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    if (param.result) {
        // What the agent made, not what was asked for.
        param.favoriteInfo = getFavorite(favorite);
        _agent.DestroySingleFavorite(favorite);
    } else {
        HL_LOGE("core error : %d", ret);
    }
    Reporter::Report(param);
}

void FavoriteHandler::DeleteFavorite(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                     const std::string& favoriteId) {
    HL_LOGI("delete favorite");
    DeleteFavoriteParam param(transaction);
    param.result = _agent.DeleteFavorite(locationId, favoriteId) == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    param.favoriteId = favoriteId;
    Reporter::Report(param);
}

void FavoriteHandler::ReplaceFavorites(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                       const std::string& favoriteInfoArray) {
    HL_LOGI("replace favorites");
    AgentList<homeloom_core_favorite_h> favorites(_agent, &ITesselHandler::DestroyFavoriteList);
    const int ret = _agent.ReplaceFavorites(locationId, favoriteInfoArray, favorites.list, favorites.count);

    ReplaceFavoriteParam param(transaction);
    param.result = ret == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    Reporter::Report(param);
}

void FavoriteHandler::GetFavorites(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId) {
    HL_LOGI("get favorite list");
    GetFavoritesParam param(transaction);
    param.locationId = locationId;
    param.result = getFavorites(locationId, param.favoriteSize, param.favoriteInfoArray);
    Reporter::Report(param);
}

void FavoriteHandler::GetFavoriteMigrationStatus(const std::shared_ptr<CTransaction>& transaction,
                                                 const std::string& locationId) {
    GetFavoriteMigrationStatusParam param(transaction);
    param.locationId = locationId;
    param.result = _agent.GetFavoriteMigrationStatus(locationId, param.isMigrated, param.lastUpdatedDate,
                                                     param.deviceModel) == HOMELOOM_CLIENT_ERROR_NONE;
    Reporter::Report(param);
}

void FavoriteHandler::UpdateFavoriteMigrationStatus(const std::shared_ptr<CTransaction>& transaction,
                                                    const std::string& locationId, const std::string& statusInfo) {
    UpdateFavoriteMigrationStatusParam param(transaction);
    param.locationId = locationId;
    param.favoriteMigrationStatusInfo = statusInfo;
    param.result =
        _agent.UpdateFavoriteMigrationStatus(locationId, statusInfo, param.statusResult) == HOMELOOM_CLIENT_ERROR_NONE;
    Reporter::Report(param);
}

std::string FavoriteHandler::GetFavoriteData(const std::string& locationId) {
    if (locationId.empty()) {
        HL_LOGE("location id empty!");
        return {};
    }
    int count = 0;
    std::string json;
    if (!getFavorites(locationId, count, json)) {
        HL_LOGE("getFavorites failed for location %s", locationId.c_str());
        return {};
    }
    HL_LOGI("%d favorites for location %s", count, locationId.c_str());
    return json;
}

bool FavoriteHandler::readFavorite(homeloom_core_favorite_h favorite, json::JsonValue& record) {
    for (const TextField& field : kTextFields) {
        std::string value;
        if (_agent.GetFavoriteString(favorite, field.field, value) != HOMELOOM_CLIENT_ERROR_NONE) {
            HL_LOGE("%s", field.complaint);
            return false;
        }
        record.set(field.key, value);
    }
    int order = 0;
    if (_agent.GetFavoriteInt(favorite, HOMELOOM_CORE_FAVORITE_ORDER, order) != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("get favorite order failed");
        return false;
    }
    record.set(Names::ORDER, order);
    return true;
}

std::string FavoriteHandler::getFavorite(homeloom_core_favorite_h favorite) {
    json::JsonValue record;
    return readFavorite(favorite, record) ? record.toString() : std::string();
}

bool FavoriteHandler::getFavorites(const std::string& locationId, int& count, std::string& json) {
    AgentList<homeloom_core_favorite_h> records(_agent, &ITesselHandler::DestroyFavoriteList);
    const int ret = _agent.GetFavoriteList(locationId, records.list, records.count);
    count = records.count;
    // Searched for in this spelling.
    HL_LOGI("ret of get favortie list: %d, favorite_size: %d, location_id: %s", ret, count, locationId.c_str());
    if (ret != HOMELOOM_CLIENT_ERROR_NONE && ret != HOMELOOM_CLIENT_ERROR_NO_DATA) {
        HL_LOGE("core error : %d", ret);
        return false;
    }

    json::JsonValue favorites;
    for (const homeloom_core_favorite_h favorite : records) {
        json::JsonValue record;
        if (readFavorite(favorite, record)) {
            HL_LOGI("favorite : %s", record.toString().c_str());
            favorites.append(record);
        }
    }
    json = favorites.isNull() ? std::string() : favorites.toString();
    HL_LOGI("favorite_info_array : %s", json.c_str());
    return true;
}

}  // namespace VMFramework::HomeLoom
