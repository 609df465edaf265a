#ifndef HOMELOOM_HOMELOOM_FAVORITE_FAVORITEHANDLER_H
#define HOMELOOM_HOMELOOM_FAVORITE_FAVORITEHANDLER_H

#include <memory>
#include <string>

#include <homeloom_core.h>

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

/// The favorites of a location: the requests, and their text for the location's endpoint. Has no state: every read
/// goes to the agent. Nothing here throws on purpose; a failed call is a report with a false flag.
class FavoriteHandler {
public:
    explicit FavoriteHandler(ITesselHandler& agent) : _agent(agent) {}
    void CreateFavorite(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                        const std::string& favoriteInfo);
    /// An empty favorite id deletes all favorites of the location.
    void DeleteFavorite(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                        const std::string& favoriteId);
    void ReplaceFavorites(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                          const std::string& favoriteInfoArray);
    /// Without a transaction its report is the notification that favorites changed.
    void GetFavorites(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId);
    void GetFavoriteMigrationStatus(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId);
    void UpdateFavoriteMigrationStatus(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                       const std::string& statusInfo);

    /// The favorites as the text of a JSON array; empty if there are none or they can't be read.
    std::string GetFavoriteData(const std::string& locationId);

private:
    bool readFavorite(homeloom_core_favorite_h favorite, json::JsonValue& record);
    std::string getFavorite(homeloom_core_favorite_h favorite);
    /// 'count' is the agent's, also when some records could not be read.
    bool getFavorites(const std::string& locationId, int& count, std::string& json);
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
