// Carries out scene requests, makes endpoints of scenes, and reports their events.
#include "Homeloom/Scene/SceneHandler.h"

#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CEndpointHelper.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

SceneHandler::SceneHandler(ITesselHandler& agent) : Handler("SceneHandler"), _agent(agent) {}

void SceneHandler::SetGetLocationsCallback(GetLocationsCallback callback) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _getLocationsCallback = std::move(callback);
}

// ---- Requests ----

void SceneHandler::ExecuteScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                const std::string& sceneId) {
    HL_LOGI("location id : %s, scene id : %s", locationId.c_str(), sceneId.c_str());
    ExecuteSceneParam param(transaction);
    const int ret = _agent.ExecuteCoreScene(locationId, sceneId, param.resultValue);
    param.result = parseExecuteSceneResult(ret, param.resultValue);
    param.locationId = locationId;
    param.sceneId = sceneId;
    Reporter::Report(param);
}

// In the answers to the next three the scene's id is that of the agent's reply and nothing else, and so is the JSON.

void SceneHandler::CreateScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                               const std::string& sceneJson) {
    HL_LOGI("location id : %s, scene json data : %s", locationId.c_str(), sceneJson.c_str());
    CreateSceneParam param(transaction);
    param.result = _agent.CreateCoreScene(locationId, sceneJson, param.sceneJson) == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    param.sceneId = getSceneIdWithResultJson(param.sceneJson);
    Reporter::Report(param);
}

void SceneHandler::UpdateScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                               const std::string& sceneId, const std::string& sceneJson) {
    HL_LOGI("location id : %s, scene id : %s", locationId.c_str(), sceneId.c_str());
    UpdateSceneParam param(transaction);
    param.result =
        _agent.UpdateCoreScene(locationId, sceneId, sceneJson, param.sceneJson) == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    param.sceneId = getSceneIdWithResultJson(param.sceneJson);
    Reporter::Report(param);
}

void SceneHandler::DeleteScene(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                               const std::string& sceneId) {
    HL_LOGI("location id : %s, scene id : %s", locationId.c_str(), sceneId.c_str());
    std::string reply;
    DeleteSceneParam param(transaction);
    param.result = _agent.DeleteCoreScene(locationId, sceneId, reply) == HOMELOOM_CLIENT_ERROR_NONE;
    param.locationId = locationId;
    param.sceneId = getSceneIdWithResultJson(reply);
    Reporter::Report(param);
}

void SceneHandler::GetSceneIconInfo(const std::shared_ptr<CTransaction>& transaction) {
    GetSceneIconsParam param(transaction);
    param.result = _agent.GetCoreSceneIconInfoJson(param.sceneIconInfo) == HOMELOOM_CLIENT_ERROR_NONE;
    Reporter::Report(param);
}

// The agent's code tells only whether the cloud was asked; whether the scene ran stands in its reply.
bool SceneHandler::parseExecuteSceneResult(int ret, const std::string& json) {
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("execute scene failed tessel ret : %d", ret);
        return false;
    }
    try {
        const auto reply = json::JsonValue::Create(json);
        if (reply["result"].asString() == "Success") {
            return true;
        }
        HL_LOGE("execute scene failed scene id : %s", reply["id"].asString().c_str());
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
    return false;
}

std::string SceneHandler::getSceneIdWithResultJson(const std::string& json) {
    try {
        const auto reply = json::JsonValue::Create(json);
        return reply["id"].asString();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        return {};
    }
}

// ---- Endpoints ----

void SceneHandler::throwIfQuit() const {
    if (IsQuit()) {
        throw CException("SceneHandler Quit", kErrorQuit);
    }
}

SceneHandler::JsonById SceneHandler::getSceneList(const std::string& locationId) {
    homeloom_core_scene_h* list = nullptr;
    int count = 0;
    const int ret = _agent.GetCoreSceneList(locationId, list, count);
    const auto destroy = [this, count](homeloom_core_scene_h* scenes) { _agent.DestroyCoreSceneList(scenes, count); };
    const std::unique_ptr<homeloom_core_scene_h, decltype(destroy)> owner(list, destroy);

    JsonById scenes;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        return scenes;
    }
    for (int i = 0; list != nullptr && i < count; ++i) {
        throwIfQuit();
        std::string id;
        std::string json;
        if (_agent.GetCoreSceneString(list[i], HOMELOOM_CORE_SCENE_ID, id) != HOMELOOM_CLIENT_ERROR_NONE) {
            HL_LOGE("get scene string (scene_id) failed");
            continue;
        }
        if (_agent.GetCoreSceneString(list[i], HOMELOOM_CORE_SCENE_JSON, json) != HOMELOOM_CLIENT_ERROR_NONE) {
            HL_LOGE("get scene string (scene_json) failed");
            continue;
        }
        HL_LOGI("scene_id {%s}, scene_json {%s}", id.c_str(), json.c_str());
        scenes[id] = std::move(json);
    }
    return scenes;
}

SceneHandler::JsonById SceneHandler::getSceneMapInfo() {
    GetLocationsCallback getLocations;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        getLocations = _getLocationsCallback;
    }
    JsonById scenes;
    if (!getLocations) {
        return scenes;
    }
    for (const auto& location : getLocations()) {
        throwIfQuit();
        scenes.merge(getSceneList(location.first));
    }
    return scenes;
}

std::string SceneHandler::getScene(const std::string& locationId, const std::string& sceneId) {
    homeloom_core_scene_h scene = nullptr;
    const int ret = _agent.GetCoreScene(locationId, sceneId, scene);
    const auto destroy = [this](homeloom_core_scene_h record) { _agent.DestroyCoreSingleScene(record); };
    const std::unique_ptr<homeloom_core_scene_s, decltype(destroy)> owner(scene, destroy);
    std::string json;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        return json;
    }
    if (_agent.GetCoreSceneString(scene, HOMELOOM_CORE_SCENE_JSON, json) != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("get scene string (scene_json) failed");
        json.clear();
    }
    return json;
}

int SceneHandler::GetSceneCount() {
    return static_cast<int>(getSceneMapInfo().size());
}

void SceneHandler::GetSceneData(const std::shared_ptr<IEndpointListHelper>& list) {
    for (const auto& [id, json] : getSceneMapInfo()) {
        throwIfQuit();
        const auto endpoint = IEndpointHelper::Create();
        endpoint->SetServiceName(Names::HOMELOOM);
        endpoint->SetInterfaceType(Names::HOMELOOM_SCENE);
        endpoint->SetDeviceType(Names::HOMELOOM_DUMMY);
        endpoint->SetDeviceId(id);
        endpoint->SetExtraData(Names::SCENE_JSON_DATA, json);
        list->Push(endpoint->GetHandle(), VMF_ERROR_NONE);
    }
}

// ---- Events ----

void SceneHandler::HandleSSEScene(const std::string& json) {
    const auto event = json::JsonValue::Create(json);
    const std::string lifecycle = event["lifecycle"].asString();
    if (lifecycle.find("MURMUR") != std::string::npos) {
        HL_LOGI("this is for MURMUR, do not handle here, will be removed later after server fixed");
        return;
    }
    const std::string locationId = event["locationId"].asString();
    if (locationId.empty()) {
        HL_LOGE("location_id is empty, do not proceed.");
        return;
    }
    const std::string sceneId = event["sceneId"].asString();
    if (sceneId.empty()) {
        HL_LOGE("scene_id is empty, do not proceed.");
        return;
    }
    if (lifecycle == Names::LIFECYCLE_CREATE) {
        sceneCreated(locationId, sceneId);
    } else if (lifecycle == Names::LIFECYCLE_UPDATE) {
        sceneUpdated(locationId, sceneId);
    } else if (lifecycle == Names::LIFECYCLE_DELETE) {
        sceneDeleted(locationId, sceneId);
    } else {
        HL_LOGE("do not handle lifecycle : %s", lifecycle.c_str());
    }
}

void SceneHandler::sceneCreated(const std::string& locationId, const std::string& sceneId) {
    HL_LOGI("[sceneCreated] location_id : %s, scene_id : %s", locationId.c_str(), sceneId.c_str());
    CreateSceneParam param(nullptr);
    param.result = true;
    param.locationId = locationId;
    param.sceneId = sceneId;
    param.sceneJson = getScene(locationId, sceneId);
    Reporter::Report(param);
}

void SceneHandler::sceneUpdated(const std::string& locationId, const std::string& sceneId) {
    HL_LOGI("[sceneUpdated] location_id : %s, scene_id : %s", locationId.c_str(), sceneId.c_str());
    UpdateSceneParam param(nullptr);
    param.result = true;
    param.locationId = locationId;
    param.sceneId = sceneId;
    param.sceneJson = getScene(locationId, sceneId);
    Reporter::Report(param);
}

void SceneHandler::sceneDeleted(const std::string& locationId, const std::string& sceneId) {
    HL_LOGI("[sceneDeleted] location_id : %s, scene_id : %s", locationId.c_str(), sceneId.c_str());
    DeleteSceneParam param(nullptr);
    param.result = true;
    param.locationId = locationId;
    param.sceneId = sceneId;
    Reporter::Report(param);
}

}  // namespace VMFramework::HomeLoom
