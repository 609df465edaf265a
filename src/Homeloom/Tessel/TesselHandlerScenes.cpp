// Facade: scenes.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::GetCoreSceneList(const std::string& locationId, homeloom_core_scene_h*& list, int& count) {
    return _AwaitList<GetSceneListParam>({{locationId, "location_id is empty"}}, list, count,
                                         homeloom_core_get_scene_list_async, locationId, _CoreSceneListCb);
}

int TesselHandler::GetCoreScene(const std::string& locationId, const std::string& sceneId,
                                homeloom_core_scene_h& scene) {
    return _AwaitRecord<GetSceneParam>({{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}}, scene,
                                       homeloom_core_get_scene_async, locationId, sceneId, _CoreSceneCb);
}

int TesselHandler::GetCoreSceneString(homeloom_core_scene_h scene, int field, std::string& value) {
    return _AccessText("scene_h is null", homeloom_core_scene_get_string, scene, field, value);
}

int TesselHandler::DestroyCoreSceneList(homeloom_core_scene_h* list, int count) {
    return _DestroyList("scene_list_h is null", homeloom_core_scene_destroy, list, count);
}

int TesselHandler::DestroyCoreSingleScene(homeloom_core_scene_h scene) {
    return _Access("scene_h is null", homeloom_core_scene_destroy, scene);
}

int TesselHandler::ExecuteCoreScene(const std::string& locationId, const std::string& sceneId,
                                    std::string& resultJson) {
    return _AwaitText<ExecuteCoreSceneParam>({{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}},
                                             resultJson, homeloom_core_execute_scene_async, locationId, sceneId,
                                             _CoreExecuteSceneCb);
}

int TesselHandler::CreateCoreScene(const std::string& locationId, const std::string& sceneJson,
                                   std::string& resultJson) {
    return _AwaitText<CreateCoreSceneParam>({{locationId, "location_id is empty"}, {sceneJson, "scene_json is empty"}},
                                            resultJson, homeloom_core_create_scene_async, locationId, sceneJson,
                                            _CoreCreateSceneCb);
}

int TesselHandler::UpdateCoreScene(const std::string& locationId, const std::string& sceneId,
                                   const std::string& sceneJson, std::string& resultJson) {
    return _AwaitText<UpdateCoreSceneParam>(
        {{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}, {sceneJson, "scene_json is empty"}},
        resultJson, homeloom_core_update_scene_async, locationId, sceneId, sceneJson, _CoreUpdateSceneCb);
}

int TesselHandler::DeleteCoreScene(const std::string& locationId, const std::string& sceneId, std::string& resultJson) {
    return _AwaitText<DeleteCoreSceneParam>({{locationId, "location_id is empty"}, {sceneId, "scene_id is empty"}},
                                            resultJson, homeloom_core_delete_scene_async, locationId, sceneId,
                                            _CoreDeleteSceneCb);
}

int TesselHandler::GetCoreSceneIconInfoJson(std::string& resultJson) {
    return _AwaitText<GetCoreSceneIconListParam>({}, resultJson, homeloom_core_get_scene_icon_list_async,
                                                 _CoreSceneIconListCb);
}

}  // namespace VMFramework::HomeLoom
