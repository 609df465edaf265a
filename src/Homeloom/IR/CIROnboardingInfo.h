#ifndef HOMELOOM_HOMELOOM_IR_CIRONBOARDINGINFO_H
#define HOMELOOM_HOMELOOM_IR_CIRONBOARDINGINFO_H

#include <memory>
#include <string>
#include <vector>

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

class IPropertyListHelper;

/// What a request says of a device that is reached by infrared, and the body that the agent wants of it.
class CIrOnboardingInfo {
public:
    /// An air conditioner's state as the screen knows it, in words ("cool", "medium", "on").
    class CAcState {
    public:
        /// What the text leaves out stays as it is.
        void ParseQseAcState(const std::string& json);
        /// Both throw CException for a word that the platform has no word for.
        json::JsonValue GetAcStateObj() const;
        json::JsonValue GetFunctionCodes(const std::string& keyMap) const;

    private:
        std::string _currentMode;
        std::string _currentPower;
        std::string _currentWindSpeed = "medium";
        std::string _currentTemperature = "24";
        std::string _unit;
        std::string _minTemperature;
        std::string _maxTemperature;
        std::vector<std::string> _availableModes;
        std::vector<std::string> _availableFanSpeeds;
        std::vector<std::string> _availablePowers;
    };

    /// Throws CException when one of the texts that every device needs is missing.
    explicit CIrOnboardingInfo(const std::shared_ptr<IPropertyListHelper>& list);

    const std::string& GetCodeset() const { return _codeset; }
    /// Throws CException for a code set that the TV doesn't know, and for an air conditioner's unknown words.
    std::string GenerateRequestBody() const;

private:
    json::JsonValue generateIrFunctionCodes() const;
    static json::JsonValue generateHumidiferFunctionCodes(const std::string& keyMap);
    static json::JsonValue generateFanFunctionCodes(const std::string& keyMap);
    static json::JsonValue generateRobotCleanerFunctionCodes(const std::string& keyMap);
    static json::JsonValue generateIrMetadata();
    static std::string getKeyMap(const std::string& codeset);

    const std::string _codeset;
    const std::string _brand;
    const std::string _deviceType;
    const std::string _displayName;
    const std::string _parentId;
    const std::string _locationId;
    const std::string _roomId;
    CAcState _acState;
};

}  // namespace VMFramework::HomeLoom

#endif
