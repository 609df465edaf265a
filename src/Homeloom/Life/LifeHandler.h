#ifndef HOMELOOM_HOMELOOM_LIFE_LIFEHANDLER_H
#define HOMELOOM_HOMELOOM_LIFE_LIFEHANDLER_H

#include <memory>
#include <string>
#include <unordered_map>

#include <homeloom_core.h>

#include "Homeloom/Common/Handler.h"

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

class CTransaction;
class Energy;
class ITesselHandler;

/// The platform's service applications: which of its catalog are installed in a location, and the energy service.
///
/// The catalog is read with the first request that gets it whole, and then stays for as long as the library is loaded,
/// whatever happens to the session and to this handler.
class LifeHandler : public Handler {
public:
    explicit LifeHandler(ITesselHandler& agent);
    ~LifeHandler() override;

    void Quit() override;

    /// Blocks until the agent has answered. Throws CException when the handler quits meanwhile: no answer then.
    void GetInstalledServiceAppInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId);
    void GetEnergyInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& installedAppId);
    /// One event of the stream.
    void HandleSseSmartAppEvent(const std::string& json);

private:
    struct AppInfo {
        std::string serviceCode;
        std::string pluginUri;
    };
    struct InstalledApp;
    using AppsInfo = std::unordered_map<std::string, AppInfo>;  // by app id
    class Catalog;

    static Catalog& catalog();
    void updateAppsInfo();
    bool readApps(const json::JsonValue& apps, AppsInfo& read) const;
    static void readApp(const json::JsonValue& app, AppsInfo& read);
    static std::string makeCatalogRequest();
    static std::string getCountryCode();

    /// The agent's code of the list call.
    int getInstalledServiceAppInfo(const std::string& locationId, std::string& json);
    bool readInstalledApp(homeloom_core_installed_app_h app, const std::string& locationId, InstalledApp& installed);
    static std::string makeBodyOfDashboard(const std::string& serviceCode);
    static std::string getTimezoneOffset();

    const std::shared_ptr<Energy> _energy;
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
