#ifndef HOMELOOM_HOMELOOM_SCENE_SCENEHANDLER_H
#define HOMELOOM_HOMELOOM_SCENE_SCENEHANDLER_H

#include <memory>
#include <string>

#include <homeloom_core.h>

#include "Homeloom/Location/LocationRecords.h"

namespace VMFramework::HomeLoom {

/// Scenes: the requests, the endpoints, and the events of the stream.
class SceneHandler : public LocationRecords<homeloom_core_scene_h> {
public:
    explicit SceneHandler(ITesselHandler& agent);

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
    void HandleSSEScene(const std::string& json) { HandleEvent(json); }
    /// Appends one endpoint for each scene of all locations. Both throw CException when the handler quits.
    void GetSceneData(const std::shared_ptr<IEndpointListHelper>& list) { AppendEndpoints(list); }
    int GetSceneCount() { return static_cast<int>(GetAll().size()); }

private:
    bool IsHidden(const std::string&) const override { return false; }
    void Created(const std::string& locationId, const std::string& sceneId) override;
    void Updated(const std::string& locationId, const std::string& sceneId) override;
    void Deleted(const std::string& locationId, const std::string& sceneId) override;
};

}  // namespace VMFramework::HomeLoom

#endif
