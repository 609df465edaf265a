// Metadata: the records by device model, and the questions that need no device's values.
#include "Homeloom/UIMeta/Metadata.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CText.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Devices/Device.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kLanguageKey[] = "db/menu_widget/language";
constexpr char kDefaultLocaleCode[] = "en";

bool isStreamResource(const device_dp_resource_struct& resource) {
    return resource.property == "liveStream" || resource.property == "stream";
}

/// The first resource that tells a stream; null if there is none.
const device_dp_resource_struct* findStreamResource(const device_ui_metadata_struct& meta) {
    const auto found = std::find_if(meta.dp_resources.begin(), meta.dp_resources.end(), isStreamResource);
    return found != meta.dp_resources.end() ? &*found : nullptr;
}

}  // namespace

const std::string Metadata::kNone;

Metadata::Metadata() : _localeCode(kDefaultLocaleCode) {
    initMaps();
    getLocaleCode();
    _isWatchingLanguage = vconf_notify_key_changed(kLanguageKey, VCONFNotifyLocaleCodeUpdate, this) == 0;
    if (!_isWatchingLanguage) {
        HL_LOGE("failed to register vconf change notify for VCONFKEY_LANGSET");
    }
}

Metadata::~Metadata() {
    StopLanguageWatch();
}

// Language

void Metadata::initMaps() {
    _localeMap = {
        {"ar_AE.utf8", "ar"},    {"bg_BG.utf8", "bg"},    {"cs_CZ.utf8", "cs"},    {"da_DK.utf8", "da"},
        {"de_DE.utf8", "de"},    {"el_GR.utf8", "el"},    {"en_US.utf8", "en_US"}, {"en_GB.utf8", "en_GB"},
        {"es_ES.utf8", "es"},    {"es_MX.utf8", "es_US"}, {"et_EE.utf8", "et"},    {"fi_FI.utf8", "fi"},
        {"fr_FR.utf8", "fr"},    {"fr_CA.utf8", "fr_US"}, {"hr_HR.utf8", "hr"},    {"hu_HU.utf8", "hu"},
        {"it_IT.utf8", "it"},    {"ko_KR.utf8", "ko"},    {"nn_NO.utf8", "nb"},    {"nl_NL.utf8", "nl"},
        {"pl_PL.utf8", "pl"},    {"pt_PT.utf8", "pt"},    {"pt_BR.utf8", "pt_US"}, {"ro_RO.utf8", "ro"},
        {"ru_RU.utf8", "ru"},    {"sk_SK.utf8", "sk"},    {"sl_SI.utf8", "sl"},    {"sq_AL.utf8", "sq"},
        {"sr_RS.utf8", "sr"},    {"sv_SE.utf8", "sv"},    {"th_TH.utf8", "th"},    {"tr_TR.utf8", "tr"},
        {"zh_CN.utf8", "zh_CN"}, {"zh_HK.utf8", "zh_HK"}, {"zh_TW.utf8", "zh_TW"},
    };
}

void Metadata::getLocaleCode() {
    const OwnedText language(vconf_get_str(kLanguageKey));
    const char* locale_code = kDefaultLocaleCode;
    if (language) {
        const auto found = _localeMap.find(language.get());
        if (found != _localeMap.end()) {
            locale_code = found->second;
            HL_LOGI("locale code is {%s}", locale_code);
        }
    }
    _localeCode = locale_code;
}

void Metadata::StopLanguageWatch() {
    if (_isWatchingLanguage.exchange(false)) {
        vconf_ignore_key_changed(kLanguageKey, VCONFNotifyLocaleCodeUpdate);
    }
}

void Metadata::VCONFNotifyLocaleCodeUpdate(keynode_t* /*node*/, void* user_data) {
    Guarded([&] {
        HL_LOGI("entered");
        static_cast<Metadata*>(user_data)->getLocaleCode();
    });
}

bool Metadata::getLocale(const std::vector<std::string>& languages, std::string& locale) const {
    if (isPresent(languages, locale)) {
        return true;
    }
    if (isStartsWith(locale, "zh")) {
        // Taken even if the document has no "zh": Chinese falls back to no other language.
        locale = "zh";
        return true;
    }
    if (isStartsWith(locale, "ko") && isPresent(languages, "ko_KR")) {
        locale = "ko_KR";
        return true;
    }
    for (const char* fallback : {"en_US", "en"}) {
        if (isPresent(languages, fallback)) {
            locale = fallback;
            return true;
        }
    }
    return false;
}

const std::string& Metadata::translatedLabel(const std::string& label, const device_ui_metadata_struct& meta) const {
    std::string locale = _localeCode.load();
    if (!getLocale(meta.languages, locale)) {
        HL_LOGE("locale : {%s} not found in ui metadata", locale.c_str());
        return kNone;
    }
    HL_LOGI("locale : %s", locale.c_str());
    const auto found = meta.translations.find(locale + label);
    return found != meta.translations.end() ? found->second : kNone;
}

// The map of parsed metadata

bool Metadata::ParseMetadata(const std::string& vid, const std::string& text) {
    const std::lock_guard<std::mutex> lock(_parseMutex);
    if (vid.empty()) {
        HL_LOGE("vid is empty");
        return false;
    }
    if (text.empty()) {
        HL_LOGE("ui_metadata is empty");
        return false;
    }
    if (const UiMetadata stored = FindUiMetadata(vid)) {
        const json::JsonValue document = json::JsonValue::Create(text);
        if (document.isNull()) {
            throw CException("JsonValue error!", kErrorFailed);
        }
        const json::JsonValue data = document["data"];
        const std::string version = data["version"].asString();
        HL_LOGI("version_prev: %s, version_curr: %s, vid:%s", stored->version.c_str(), version.c_str(), vid.c_str());
        if (!version.empty() && version == stored->version) {
            HL_LOGI("ui metadata version is same. already parsed case!!");
            return false;
        }
    }
    device_ui_metadata_struct parsed;
    if (!_parser.ParseMetadata(vid, text, parsed)) {
        HL_LOGE("metadata parsing is failed. vid: %s", vid.c_str());
        return false;
    }
    const auto meta = std::make_shared<const device_ui_metadata_struct>(std::move(parsed));
    addParsedMetadata(vid, meta);
    HL_LOGI("ui metadata parsed newly. map_size:%d, vid: %s, actionlist size: %zu", GetMetadataSize(), vid.c_str(),
            meta->main_actions.size());
    return true;
}

void Metadata::addParsedMetadata(const std::string& vid, UiMetadata meta) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _metadataMap[vid] = std::move(meta);
}

bool Metadata::IsParsedMetadata(const std::string& vid) const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _metadataMap.count(vid) > 0;
}

Metadata::UiMetadata Metadata::FindUiMetadata(const std::string& vid) const {
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto found = _metadataMap.find(vid);
    return found != _metadataMap.end() ? found->second : nullptr;
}

bool Metadata::GetUiMetadataFromMap(const std::string& vid, device_ui_metadata_struct& out) const {
    const UiMetadata meta = FindUiMetadata(vid);
    if (!meta) {
        return false;
    }
    out = *meta;
    return true;
}

bool Metadata::IsEmptyMetadataMap() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _metadataMap.empty();
}

int Metadata::GetMetadataSize() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return static_cast<int>(_metadataMap.size());
}

std::map<std::string, Metadata::UiMetadata> Metadata::GetDeviceUiMetadata() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _metadataMap;
}

void Metadata::ClearMetadataMaps() {
    const std::lock_guard<std::mutex> lock(_mutex);
    _metadataMap.clear();
}

std::vector<std::string> Metadata::GetSubscribeList(const std::string& vid) const {
    const UiMetadata meta = FindUiMetadata(vid);
    if (!meta) {
        HL_LOGE("vid not found in matadata map");
        return {};
    }
    return meta->subscribe_uris;
}

std::vector<device_dp_resource_struct> Metadata::GetDPResourceList(const std::string& vid) const {
    const UiMetadata meta = FindUiMetadata(vid);
    return meta ? meta->dp_resources : std::vector<device_dp_resource_struct>();
}

std::vector<std::string> Metadata::GetPropertyNameList(const std::string& vid, const std::string& uri) const {
    const UiMetadata meta = FindUiMetadata(vid);
    if (!meta) {
        HL_LOGE("vid not found in matadata map");
        return {};
    }
    return ShownNames(*meta, uri);
}

const std::vector<std::string>& Metadata::ShownNames(const device_ui_metadata_struct& meta, const std::string& uri) {
    static const std::vector<std::string> kNoNames;
    const auto found = meta.shown_names.find(uri);
    return found != meta.shown_names.end() ? found->second : kNoNames;
}

void Metadata::SetGenericSubscribeUri(const std::string& vid, const std::string& uri) {
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto found = _metadataMap.find(vid);
    if (found == _metadataMap.end()) {
        HL_LOGE("vid not found in matadata map");
        return;
    }
    if (found->second->generic_subscribe_uri != uri) {
        auto changed = std::make_shared<device_ui_metadata_struct>(*found->second);
        changed->generic_subscribe_uri = uri;
        found->second = std::move(changed);
    }
    HL_LOGI("SetGenericSubscribeUri : %s, vid : %s", uri.c_str(), vid.c_str());
}

std::string Metadata::GetSolenneServerDpUri(const std::string& vid) const {
    const UiMetadata meta = FindUiMetadata(vid);
    if (!meta) {
        HL_LOGE("vid not found in matadata map");
        return {};
    }
    return meta->solenne_server_dp_uri;
}

bool Metadata::IsGenericMetadata(const std::string& vid) const {
    const UiMetadata meta = FindUiMetadata(vid);
    return meta && meta->is_generic;
}

bool Metadata::HasMainAction(const std::string& vid, const std::string& property) const {
    return HasMainAction(vid, FindUiMetadata(vid).get(), property);
}

bool Metadata::HasMainAction(const std::string& vid, const device_ui_metadata_struct* meta,
                             const std::string& property) {
    // A property is compared, though the lines call it a url.
    HL_LOGI("vid : %s, main action url : %s", vid.c_str(), property.c_str());
    if (meta == nullptr) {
        HL_LOGE("no metadata found");
        return false;
    }
    const bool found = std::any_of(meta->main_actions.begin(), meta->main_actions.end(),
                                   [&](const device_action_struct& action) { return action.property == property; });
    if (found) {
        HL_LOGI("found main action uri : %s", property.c_str());
    }
    return found;
}

int Metadata::NumOfMainStates(const std::string& vid) const {
    const UiMetadata meta = FindUiMetadata(vid);
    return meta ? static_cast<int>(meta->main_states.size()) : 0;
}

int Metadata::NumOfMainActions(const std::string& vid) const {
    const UiMetadata meta = FindUiMetadata(vid);
    return meta ? static_cast<int>(meta->main_actions.size()) : 0;
}

// Icon and streams

void Metadata::UpdateDeviceIconUrl(const DevicePtr& device) const {
    if (device) {
        updateIconUrl(*device, FindUiMetadata(device->GetVid()).get());
    }
}

void Metadata::updateIconUrl(Device& device, const device_ui_metadata_struct* meta) {
    device.SetIconUrl(meta != nullptr ? meta->icon_url : kNone);
}

void Metadata::Refresh(Device& device, const device_ui_metadata_struct* meta) const {
    setStateText(device, meta);
    updateIconUrl(device, meta);
}

std::string Metadata::GetStreamURI(const DevicePtr& device) const {
    if (!device) {
        return {};
    }
    std::string uri;
    if (const UiMetadata meta = FindUiMetadata(device->GetVid())) {
        if (const device_dp_resource_struct* resource = findStreamResource(*meta)) {
            uri = resource->href;
        }
    }
    HL_LOGI("stream uri : %s", uri.c_str());
    return uri;
}

bool Metadata::HasStreamResource(const DevicePtr& device) const {
    if (!device || !device->IsCameraDevice()) {
        return false;
    }
    if (device->GetStatus() == DEVICE_STATUS_DISCONNECTED) {
        HL_LOGI("{%s} camera is disconnected ", device->GetId().c_str());
        return false;
    }
    const UiMetadata meta = FindUiMetadata(device->GetVid());
    if (!meta) {
        HL_LOGE("metadata for %s not found", device->GetVid().c_str());
        return false;
    }
    const device_dp_resource_struct* resource = findStreamResource(*meta);
    return resource != nullptr && device->HasResource(resource->href);
}

bool Metadata::isPresent(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace VMFramework::HomeLoom
