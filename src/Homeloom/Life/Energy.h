#ifndef HOMELOOM_HOMELOOM_LIFE_ENERGY_H
#define HOMELOOM_HOMELOOM_LIFE_ENERGY_H

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>

namespace VMFramework::json {
class JsonValue;
}

namespace VMFramework::HomeLoom {

class CTransaction;
class ITesselHandler;

/// How much energy the devices of a location consumed this month, and whether each is in energy saving mode.
///
/// A request is answered in two stages: at once with the consumption alone, and later, from the scheduler, with the
/// saving mode as well, for which each device has to be asked. Made as a shared object: a job of the second stage keeps
/// it.
class Energy : public std::enable_shared_from_this<Energy> {
public:
    explicit Energy(ITesselHandler& agent) : _agent(agent) {}
    /// Blocks until the consumption is there.
    void GetEnergyInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& installedAppId);
    /// The energy service says that there is something new: only the second stage.
    void EnergyInfoUpdated(const std::string& installedAppId);
    /// Ends what goes on, soon, and lets nothing begin any more.
    void Deinit() { _quit = true; }

private:
    using Consumption = std::unordered_map<std::string, int>;  // watt hours by device id

    bool getEnergyConsumption(const std::shared_ptr<CTransaction>& transaction, const std::string& installedAppId,
                              Consumption& consumption);
    std::string requestGetEnergyConsumption(const std::string& installedAppId);
    static bool parsingConsumpedEnergy(const std::string& text, Consumption& consumption);

    bool reportConsumedEnergyInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& installedAppId,
                                  const Consumption& consumption);
    static json::JsonValue makeConsumedEnergyJsonInfo(const Consumption& consumption);

    void reportAllEnergyInfo(const std::string& installedAppId, const Consumption& consumption);
    void runSecondStage(const std::string& installedAppId, const Consumption& consumption);
    json::JsonValue makeEnergyJsonInfo(const Consumption& consumption);
    std::string getDeviceStatus(const std::string& deviceId);

    static void report(const std::shared_ptr<CTransaction>& transaction, bool result, const std::string& installedAppId,
                       const json::JsonValue& info);
    static std::string makeReportJson(const std::string& installedAppId, const json::JsonValue& value);

    bool isQuit() const;

    std::atomic<bool> _quit{false};
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif
