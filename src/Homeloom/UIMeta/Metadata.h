#ifndef HOMELOOM_HOMELOOM_UIMETA_METADATA_H
#define HOMELOOM_HOMELOOM_UIMETA_METADATA_H

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <vconf.h>

#include "Common/CSingleton.h"
#include "Homeloom/UIMeta/UIMetadataParser.h"
#include "Homeloom/UIMeta/UIMetadataStructs.h"

namespace VMFramework::HomeLoom {

class Device;

/// Parsed UI metadata by device model (`vid`), and what it says about a device: state text, main action, icon,
/// sub device cards, URIs to subscribe.
///
/// Thread-safe as to the metadata. The devices given are read and changed without a lock, so the caller holds the one
/// that guards them. A record never changes once it is in the map: whoever took one works on a stable picture
/// without a lock, and a change puts a new record in its place.
class Metadata : public CSingleton<Metadata> {
public:
    using UiMetadata = std::shared_ptr<const device_ui_metadata_struct>;
    using DevicePtr = std::shared_ptr<Device>;

    /// Ends the watch of the TV's language, which is on from construction. When it returns, the settings no longer know
    /// of this object. May be called at any time.
    void StopLanguageWatch();

    // The map of parsed metadata

    /// Parses and stores a document. False if it is empty or unfit, or if its version is stored already. Throws
    /// CException if the model is stored already and `text` is no JSON.
    bool ParseMetadata(const std::string& vid, const std::string& text);
    bool IsParsedMetadata(const std::string& vid) const;
    /// The stored record, shared; null for an unknown vid.
    UiMetadata FindUiMetadata(const std::string& vid) const;
    /// A copy of the stored record, for who needs one of his own. False for an unknown vid.
    bool GetUiMetadataFromMap(const std::string& vid, device_ui_metadata_struct& out) const;
    bool IsEmptyMetadataMap() const;
    int GetMetadataSize() const;
    std::map<std::string, UiMetadata> GetDeviceUiMetadata() const;
    void ClearMetadataMaps();

    std::vector<std::string> GetSubscribeList(const std::string& vid) const;
    std::vector<device_dp_resource_struct> GetDPResourceList(const std::string& vid) const;
    /// The properties of that resource which something will show: nothing else is worth reading.
    std::vector<std::string> GetPropertyNameList(const std::string& vid, const std::string& uri) const;
    /// Stores which URI of the generic metadata works for this vid.
    void SetGenericSubscribeUri(const std::string& vid, const std::string& uri);
    std::string GetSolenneServerDpUri(const std::string& vid) const;
    bool IsGenericMetadata(const std::string& vid) const;
    /// Whether any main action sets this property.
    bool HasMainAction(const std::string& vid, const std::string& property) const;
    int NumOfMainStates(const std::string& vid) const;
    int NumOfMainActions(const std::string& vid) const;

    // Evaluation. A null device gives the empty answer.

    /// Refreshes sub device cards and state text.
    void SetDeviceStateText(const DevicePtr& device) const;
    /// Refreshes state text and inactivity. A device without metadata that is connected stays as it is.
    void GetDeviceStateText(const DevicePtr& device) const;
    /// Refreshes the JSON of the device's sub device cards and answers their number.
    int SetSubDeviceCardList(const DevicePtr& device) const;
    bool hasSubDeviceCard(const DevicePtr& device) const;

    /// Which property of which resource the device's main action would set now, and to what. A `uri` that comes in set
    /// picks that resource's action; an empty one the first that is visible. False if there is nothing to do.
    bool GetDeviceMainAction(const DevicePtr& device, std::string& uri, std::string& property,
                             std::string& value) const;
    std::string GetDeviceMainActionControlType(const DevicePtr& device) const;
    /// The URI that the main action sets.
    std::string ActionUrl(const DevicePtr& device) const;
    /// How the main action is to be drawn: its state, or its icon if it is a push button.
    std::string ActionIcon(const DevicePtr& device) const;
    /// All of this with the metadata looked up once, and SetSubDeviceCardList() if the model has main states: what
    /// list entries and notifications are made of.
    device_presentation_struct GetPresentation(const DevicePtr& device) const;

    // The same of a record that the caller has found, for who asks much about one device. Without metadata it is null.

    static const std::vector<std::string>& ShownNames(const device_ui_metadata_struct& meta, const std::string& uri);
    static bool HasMainAction(const std::string& vid, const device_ui_metadata_struct* meta,
                              const std::string& property);
    /// SetDeviceStateText and UpdateDeviceIconUrl.
    void Refresh(Device& device, const device_ui_metadata_struct* meta) const;
    device_presentation_struct GetPresentation(Device& device, const device_ui_metadata_struct* meta) const;

    /// GetDeviceMainActionControlType, ActionIcon and ActionUrl with the metadata looked up once.
    device_presentation_struct GetMainActionLook(const Device& device) const;

    void UpdateDeviceIconUrl(const DevicePtr& device) const;
    /// The resource that tells a camera's stream.
    std::string GetStreamURI(const DevicePtr& device) const;
    bool HasStreamResource(const DevicePtr& device) const;

private:
    friend class CSingleton<Metadata>;
    Metadata();
    ~Metadata();

    // Language (Metadata.cpp)
    void initMaps();
    void getLocaleCode();
    static void VCONFNotifyLocaleCodeUpdate(keynode_t* node, void* user_data);
    bool getLocale(const std::vector<std::string>& languages, std::string& locale) const;
    const std::string& translatedLabel(const std::string& label, const device_ui_metadata_struct& meta) const;

    void addParsedMetadata(const std::string& vid, UiMetadata meta);

    // Main state (MetadataState.cpp)
    void setStateText(Device& device, const device_ui_metadata_struct* meta) const;
    void evaluateStateText(Device& device, const device_ui_metadata_struct* meta) const;
    void getDeviceStateLable(Device& device, const device_ui_metadata_struct& meta, std::string& text,
                             bool& inactive) const;
    void getGenericStateLabel(Device& device, const device_ui_metadata_struct& meta, std::string& text,
                              bool& inactive) const;
    void getMainStateLabel(Device& device, const device_state_struct& state, const device_ui_metadata_struct& meta,
                           std::string& text, bool& inactive) const;
    void getMakeUpArgument(Device& device, const std::string& label, const device_state_struct& state,
                           const device_ui_metadata_struct& meta, std::string& text, bool& inactive) const;
    std::string getArgumentValue(Device& device, const device_state_struct& state, std::string_view name,
                                 const device_ui_metadata_struct& meta, bool& inactive) const;
    static std::string getAlternativeString(const device_argument_struct& argument, const std::string& key);
    std::string getAlternativeValueWithString(const std::string& raw, const device_argument_struct& argument,
                                              const device_ui_metadata_struct& meta, bool& inactive) const;
    std::string getAlternativeValueWithJsonValue(const json::JsonValue& document,
                                                 const device_argument_struct& argument,
                                                 const device_ui_metadata_struct& meta, bool& inactive) const;
    std::string shownAlternative(std::string alternative, const std::string& key,
                                 const device_argument_struct& argument, const device_ui_metadata_struct& meta,
                                 bool& inactive) const;

    // Visibility and values (MetadataState.cpp)
    static bool isMainStateVisible(const Device& device, const device_state_struct& state);
    static bool isMainActionVisible(const Device& device, const device_action_struct& action);
    static bool checkVisible(const Device& device, const std::string& uri, const std::string& property,
                             std::string_view op, const std::string& operand);
    static const std::string& getDeviceProperty(const Device& device, const std::string& uri,
                                                const std::string& property);
    static json::JsonValue parseList(const std::string& value);

    // Sub device cards (MetadataCard.cpp)
    static bool hasSubDeviceCard(const device_ui_metadata_struct& meta) { return !meta.main_states.empty(); }
    int setSubDeviceCards(Device& device, const device_ui_metadata_struct& meta) const;
    int refreshSubDeviceCards(Device& device, const device_ui_metadata_struct& meta) const;
    bool makeSubDeviceCard(Device& device, const device_ui_metadata_struct& meta, const std::string& group,
                           bool& inactive, json::JsonValue& card) const;
    static std::string getActionUrl(const Device& device, const device_ui_metadata_struct& meta,
                                    const std::string& group);
    static std::string getActionControlType(const Device& device, const device_ui_metadata_struct& meta,
                                            const std::string& group);
    static std::string getActionState(const Device& device, const device_ui_metadata_struct& meta,
                                      const std::string& group);

    // Main action (MetadataAction.cpp). Without metadata `meta` is null.
    static const std::string& mainActionControlType(const Device& device, const device_ui_metadata_struct& meta);
    static const std::string& mainActionUrl(const Device& device, const device_ui_metadata_struct& meta);
    static const std::string& mainActionIcon(const Device& device, const device_ui_metadata_struct* meta);
    static bool getGenericMainAction(const Device& device, const device_ui_metadata_struct& meta, std::string& uri,
                                     std::string& property, std::string& value);
    static bool getGenericActionKeyValue(const Device& device, const std::vector<std::string>& keys,
                                         const std::string& uri, const std::string& property, std::string& value);
    static bool isDecidingAction(const Device& device, const device_ui_metadata_struct& meta,
                                 const device_action_struct& action);
    static bool getNextValue(const Device& device, const device_action_struct& action, std::string& value);
    static const std::string& iconOrState(const Device& device, const device_action_struct& action,
                                          const std::string& control_type);
    static const std::string& checkAlternativeType(const Device& device, const device_action_struct& action);
    static const std::string& getAlternativeType(const json::JsonValue& list,
                                                 const device_alternative_struct& alternative,
                                                 const std::string& value);
    static const std::string& findAlternativeType(const device_alternative_struct& alternative, const std::string& key);

    // Icon and streams (Metadata.cpp)
    static void updateIconUrl(Device& device, const device_ui_metadata_struct* meta);

    static const std::string kNone;  // for whoever answers a text by reference and has none

    static bool isStartsWith(std::string_view text, std::string_view prefix) {
        return text.substr(0, prefix.size()) == prefix;
    }
    static bool isContains(std::string_view text, std::string_view part) {
        return text.find(part) != std::string_view::npos;
    }
    static bool isPresent(const std::vector<std::string>& list, const std::string& text);

    mutable std::mutex _mutex;  // guards _metadataMap; taken after the device handler's, and nothing after it
    std::mutex _parseMutex;     // one ParseMetadata at a time, without holding up those who only look; before _mutex
    std::atomic<const char*> _localeCode;                // a text of static storage, so that a reader needs no lock
    std::map<std::string_view, const char*> _localeMap;  // the system's language value, and the metadata's
    UIMetadataParser _parser;
    std::map<std::string, UiMetadata> _metadataMap;
    std::atomic<bool> _isWatchingLanguage{false};
};

}  // namespace VMFramework::HomeLoom

#endif
