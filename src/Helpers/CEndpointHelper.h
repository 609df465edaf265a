#ifndef HOMELOOM_HELPERS_CENDPOINTHELPER_H
#define HOMELOOM_HELPERS_CENDPOINTHELPER_H

#include <map>
#include <memory>
#include <string>

#include <VMFramework/CNoncopyable.h>
#include <vmf_endpoint.h>

namespace VMFramework::HomeLoom {

class Device;

/// Writes a device's details to the log. Stands with the devices: the helper sees no more of one than this.
void PrintDevice(const Device& device);

/// One endpoint: the framework's record of a device, location, scene or routine. Used by one thread at a time.
///
/// Unlike a property list, an endpoint keeps empty texts.
class IEndpointHelper : public VMFramework::CNoncopyable {
public:
    /// A new endpoint, which its helper does not destroy: it is handed over to an endpoint list with Push, and
    /// that list owns it. Throws CException if the framework gives none.
    static std::shared_ptr<IEndpointHelper> Create();
    /// A copy that the helper owns. Throws as above.
    static std::shared_ptr<IEndpointHelper> Copy(vmf_endpoint_h endpoint);

    virtual ~IEndpointHelper() = default;

    virtual vmf_endpoint_h GetHandle() const = 0;
    virtual void SetServiceName(const std::string& value) = 0;
    virtual void SetInterfaceType(const std::string& value) = 0;
    virtual void SetDeviceId(const std::string& value) = 0;
    virtual void SetDeviceName(const std::string& value) = 0;
    virtual void SetDeviceType(const std::string& value) = 0;
    virtual void SetSubDeviceType(const std::string& value) = 0;
    virtual void SetExtraData(const std::string& key, const std::string& value) = 0;
    virtual void SetExtraDataInt(const std::string& key, int value) = 0;
    virtual void SetExtraDataBool(const std::string& key, bool value) = 0;
    virtual std::string GetServiceName() const = 0;
    virtual std::string GetInterfaceType() const = 0;
    virtual std::string GetDeviceId() const = 0;
    virtual std::string GetDeviceName() const = 0;
    virtual std::string GetDeviceType() const = 0;
    virtual std::string GetExtraData(const std::string& key) const = 0;
    /// Writes the endpoint and the device it stands for to the log.
    virtual void PrintData(const std::shared_ptr<Device>& device) const = 0;

    /// The same for keys and values that are literals: no text is made of them.
    virtual void SetServiceName(const char* value) = 0;
    virtual void SetInterfaceType(const char* value) = 0;
    virtual void SetDeviceType(const char* value) = 0;
    virtual void SetExtraData(const char* key, const std::string& value) = 0;
    virtual void SetExtraDataInt(const char* key, int value) = 0;
    virtual void SetExtraDataBool(const char* key, bool value) = 0;
};

class CEndpointHelper : public IEndpointHelper {
public:
    CEndpointHelper(vmf_endpoint_h endpoint, bool owning) noexcept;
    ~CEndpointHelper() override;

    vmf_endpoint_h GetHandle() const override;
    void SetServiceName(const std::string& value) override;
    void SetInterfaceType(const std::string& value) override;
    void SetDeviceId(const std::string& value) override;
    void SetDeviceName(const std::string& value) override;
    void SetDeviceType(const std::string& value) override;
    void SetSubDeviceType(const std::string& value) override;
    void SetExtraData(const std::string& key, const std::string& value) override;
    void SetExtraDataInt(const std::string& key, int value) override;
    void SetExtraDataBool(const std::string& key, bool value) override;
    std::string GetServiceName() const override;
    std::string GetInterfaceType() const override;
    std::string GetDeviceId() const override;
    std::string GetDeviceName() const override;
    std::string GetDeviceType() const override;
    std::string GetExtraData(const std::string& key) const override;
    void PrintData(const std::shared_ptr<Device>& device) const override;
    void SetServiceName(const char* value) override;
    void SetInterfaceType(const char* value) override;
    void SetDeviceType(const char* value) override;
    void SetExtraData(const char* key, const std::string& value) override;
    void SetExtraDataInt(const char* key, int value) override;
    void SetExtraDataBool(const char* key, bool value) override;

private:
    const vmf_endpoint_h _endpoint;
    const bool _owning;
    // Asked once: a list of a thousand devices has thirty thousand values, and mostly nobody listens.
    const bool _isPrinted;

    // Shadows of what was set, for the log: the framework has no getter for all of it. Filled if the log takes them.
    std::string _serviceName;
    std::string _interfaceType;
    std::string _deviceId;
    std::string _deviceName;
    std::string _deviceType;
    std::string _subDeviceType;
    std::map<std::string, std::string> _extraData;
    std::map<std::string, int> _extraDataInt;
    std::map<std::string, bool> _extraDataBool;
};

}  // namespace VMFramework::HomeLoom

#endif
