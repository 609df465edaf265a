#ifndef HOMELOOM_HOMELOOM_SCENE_SCENEHANDLER_H
#define HOMELOOM_HOMELOOM_SCENE_SCENEHANDLER_H

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "Homeloom/Common/Handler.h"
#include "Homeloom/Location/CoreLocationInfo.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class IEndpointListHelper;
class ITesselHandler;

/// Scenes: the requests, the endpoints, and the events of the stream. Holds no scene: every read goes to the agent
/// and blocks on the facade.
class SceneHandler : public Handler {
public:
    using GetLocationsCallback = std::function<std::unordered_map<std::string, core_location_info_struct>()>;

    explicit SceneHandler(ITesselHandler& agent);

    void SetGetLocationsCallback(GetLocationsCallback callback);

    void ExecuteScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                      const std::string& sceneId);
    void CreateScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                     const std::string& sceneJson);
    void UpdateScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                     const std::string& sceneId, const std::string& sceneJson);
    void DeleteScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                     const std::string& sceneId);
    void GetSceneIconInfo(const std::shared_ptr<CTransaction>& transaction);

    /// One event of the stream. Throws when a member that it reads is no text.
    void HandleSSEScene(const std::string& json);
    /// Appends one endpoint for each scene of all locations. Both throw CException when the handler quits.
    void GetSceneData(const std::shared_ptr<IEndpointListHelper>& list);
    int GetSceneCount();

private:
    using JsonById = std::unordered_map<std::string, std::string>;

    JsonById getSceneList(const std::string& locationId);
    JsonById getSceneMapInfo();
    std::string getScene(const std::string& locationId, const std::string& sceneId);
    static bool parseExecuteSceneResult(int ret, const std::string& json);
    static std::string getSceneIdWithResultJson(const std::string& json);

    void sceneCreated(const std::string& locationId, const std::string& sceneId);
    void sceneUpdated(const std::string& locationId, const std::string& sceneId);
    void sceneDeleted(const std::string& locationId, const std::string& sceneId);
    void throwIfQuit() const;

    std::mutex _mutex;  // a leaf: guards the callback
    GetLocationsCallback _getLocationsCallback;
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
