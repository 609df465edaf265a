// The agent's functions: favorites of a location.
#include <algorithm>

#include <homeloom_core.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

SharedRecord favoriteRecord(const Favorite& favorite) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CORE_FAVORITE_ID, favorite.id},
                     {HOMELOOM_CORE_FAVORITE_LOCATION_ID, favorite.location},
                     {HOMELOOM_CORE_FAVORITE_MEMBER_ID, favorite.memberId},
                     {HOMELOOM_CORE_FAVORITE_MEMBER_TYPE, favorite.memberType},
                     {HOMELOOM_CORE_FAVORITE_CREATE_DATE, favorite.createDate},
                     {HOMELOOM_CORE_FAVORITE_LAST_UPDATE_DATE, favorite.lastUpdateDate}};
    record->numbers = {{HOMELOOM_CORE_FAVORITE_ORDER, favorite.order}};
    return record;
}

Records favoritesOf(const World& world, const std::string& locationId) {
    Records records;
    for (const Favorite& favorite : world.home.favorites) {
        if (favorite.location == locationId) {
            records.push_back(favoriteRecord(favorite));
        }
    }
    return records;
}

void postLifecycle(World& world, const char* lifecycle, const std::string& locationId) {
    world.postEvent(HOMELOOM_CORE_SSE_FAVORITE_LIFECYCLE,
                    toText(json::object{{"lifecycle", lifecycle}, {"locationId", locationId}}));
}

/// Reads what a client asks for: {"memberId", "memberType", "order"}. False when it names no member.
bool readFavorite(World& world, const std::string& locationId, const json::value& info, Favorite& favorite) {
    favorite.memberId = textMember(info, "memberId");
    favorite.memberType = textMember(info, "memberType");
    if (favorite.memberId.empty()) {
        return false;
    }
    const json::value* order = info.get_object().if_contains("order");
    favorite.order = order != nullptr && order->is_int64() ? static_cast<int>(order->get_int64()) : 0;
    favorite.id = world.newId("favorite");
    favorite.location = locationId;
    favorite.createDate = world.home.now;
    favorite.lastUpdateDate = world.home.now;
    return true;
}

void removeFavorites(World& world, const std::function<bool(const Favorite&)>& which) {
    auto& favorites = world.home.favorites;
    favorites.erase(std::remove_if(favorites.begin(), favorites.end(), which), favorites.end());
}

}  // namespace

int homeloom_core_get_favorite_list_async(homeloom_client_h client, const char* location_id,
                                          homeloom_core_favorite_list_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id}, Needs::SignIn);
    return answerList(call, callback, user_data, [locationId = Argument(location_id).text()](World& world) {
        return favoritesOf(world, locationId);
    });
}

int homeloom_core_favorite_get_string(homeloom_core_favorite_h favorite, int field, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, favorite, field, value);
}

int homeloom_core_favorite_get_int(homeloom_core_favorite_h favorite, int field, int* value) {
    static Function& function = functionNamed(__func__);
    return getNumber(function, favorite, field, value);
}

int homeloom_core_favorite_destroy(homeloom_core_favorite_h favorite) {
    static Function& function = functionNamed(__func__);
    return destroy(function, favorite);
}

int homeloom_core_create_favorite(homeloom_client_h client, const char* location_id, const char* favorite_info,
                                  homeloom_core_favorite_h* favorite) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {location_id, favorite_info}, Needs::SignIn).now([&](World& world, Client&) {
        Favorite created;
        if (favorite == nullptr || world.home.location(location_id) == nullptr ||
            !readFavorite(world, location_id, parsed(favorite_info), created)) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        world.home.favorites.push_back(created);
        *favorite = new homeloom_core_favorite_s(favoriteRecord(created));
        postLifecycle(world, "CREATE", location_id);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_delete_favorite(homeloom_client_h client, const char* location_id, const char* favorite_id) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {location_id, favorite_id}, Needs::SignIn).now([&](World& world, Client&) {
        const std::size_t before = world.home.favorites.size();
        removeFavorites(world, [&](const Favorite& favorite) {
            return favorite.location == location_id && favorite.id == favorite_id;
        });
        if (world.home.favorites.size() == before) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        postLifecycle(world, "DELETE", location_id);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_delete_favorites(homeloom_client_h client, const char* location_id) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {location_id}, Needs::SignIn).now([&](World& world, Client&) {
        if (world.home.location(location_id) == nullptr) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        removeFavorites(world, [&](const Favorite& favorite) { return favorite.location == location_id; });
        postLifecycle(world, "DELETE", location_id);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_replace_favorites(homeloom_client_h client, const char* location_id, const char* favorite_info_array,
                                    homeloom_core_favorite_h** list, int* count) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, favorite_info_array}, Needs::SignIn);
    return call.now([&](World& world, Client&) {
        const json::value infos = parsed(favorite_info_array);
        if (list == nullptr || count == nullptr || !infos.is_array() || world.home.location(location_id) == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        std::vector<Favorite> replacement;
        for (const json::value& info : infos.get_array()) {
            if (!readFavorite(world, location_id, info, replacement.emplace_back())) {
                // The favorites stay as they are, and are handed out all the same.
                const Records present = favoritesOf(world, location_id);
                giveList(call, present, list, count);
                return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
            }
        }
        removeFavorites(world, [&](const Favorite& favorite) { return favorite.location == location_id; });
        world.home.favorites.insert(world.home.favorites.end(), replacement.begin(), replacement.end());
        const Records present = favoritesOf(world, location_id);
        giveList(call, present, list, count);
        postLifecycle(world, "UPDATE", location_id);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_get_favorite_migration_status(homeloom_client_h client, const char* location_id, bool* is_migrated,
                                                char** last_updated_date, char** device_model) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {location_id}, Needs::SignIn).now([&](World& world, Client&) {
        const Location* location = world.home.location(location_id);
        if (is_migrated == nullptr || last_updated_date == nullptr || device_model == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        if (location == nullptr) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        *is_migrated = location->favoritesMigrated;
        *last_updated_date = handOut(location->favoritesMigratedDate);
        *device_model = handOut(location->favoritesMigratedModel);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_update_favorite_migration_status(homeloom_client_h client, const char* location_id,
                                                   const char* status_info, char** status_result) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {location_id, status_info}, Needs::SignIn, status_result)
        .now([&](World& world, Client&) {
            Location* location = world.home.location(location_id);
            const json::value status = parsed(status_info);
            if (status_result == nullptr || !status.is_object()) {
                return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
            }
            if (location == nullptr) {
                return HOMELOOM_CLIENT_ERROR_NO_DATA;
            }
            const json::value* const isMigrated = memberOf(&status, "isMigrated");
            location->favoritesMigrated = isMigrated == nullptr || *isMigrated != false;
            location->favoritesMigratedDate = world.home.now;
            location->favoritesMigratedModel = textMember(status, "deviceModel");
            *status_result = handOut(
                toText(json::object{{"isMigrated", location->favoritesMigrated}, {"lastUpdatedDate", world.home.now}}));
            return HOMELOOM_CLIENT_ERROR_NONE;
        });
}
