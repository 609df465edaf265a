// Installed service apps: which are told, and the catalog that decides it.

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include <VMFramework/JsonValue.h>
#include <gmock/gmock.h>

#include "desktop/DataFolder.h"
#include "desktop/System.h"
#include "simulator/Fault.h"
#include "simulator/ServiceManager.h"
#include "support/Desk.h"
#include "support/Screen.h"

namespace framework = homeloom::desktop::framework;
namespace settings = homeloom::desktop::settings;
using simulator::Fault;
using testing::ElementsAre;
using testing::IsEmpty;
using VMFramework::json::JsonValue;

namespace {

constexpr char kRequest[] = "hl_get_installed_service_app_info";
constexpr char kCatalog[] = "homeloom_core_get_catalog_app_list_async";
constexpr int kInstalledAppEvent = 2048;

class ServiceApp : public testing::Test {
protected:
    void Start(simulator::Home home) {
        desk.agent.load(std::move(home));
        desk.startAndShow();
        desk.settle();
        desk.mark();
    }
    void Start() { Start(SmallHome()); }

    static simulator::Home SmallHome() { return homeloom::test::apartmentWith({"washer"}); }
    static simulator::Home HomeWith(const simulator::InstalledApp& app) {
        simulator::Home home = SmallHome();
        home.installedApps = {app};
        return home;
    }

    std::string Ask(const std::string& locationId = "home", bool result = true) {
        const auto answer = desk.ask(kRequest, {{"location_id", locationId}});
        EXPECT_EQ(answer->properties.flag("result"), result);
        EXPECT_EQ(answer->properties.text("location_id"), locationId);
        return answer->properties.text("installed_service_app_info_json");
    }

    Desk desk{SmallHome()};
};

const simulator::InstalledApp kApp = {
    "installed", "Display Name", "AUTHORIZED", "app-public-dr", "home", R"({"pluginId":"plugin"})", ""};
}  // namespace

TEST_F(ServiceApp, TheCatalogIsThatOfTheCountry) {
    Start();
    constexpr char kCountryKey[] = "db/comss/countrycode";
    const struct {
        std::optional<std::string> file, setting;
        const char* country;
    } cases[] = {
        {std::nullopt, "US", R"(,"country":"US"})"},
        {std::nullopt, "AA", R"(,"country":"KR"})"},
        {std::nullopt, std::nullopt, "}"},
        {R"({"SelectedCountryCode":"FR"})", "US", R"(,"country":"FR"})"},
        {R"({"SelectedCountryCode":"AA"})", "US", R"(,"country":"KR"})"},
        {R"({"SelectedCountryCode":""})", "US", R"(,"country":"US"})"},
        {R"({"SelectedCountryCode":{}})", "AA", R"(,"country":"KR"})"},
        {"FR", "US", R"(,"country":"US"})"},
        {"", std::nullopt, "}"},
    };
    const auto file = homeloom::desktop::dataFolder() / "Country";
    desk.agent.fault(kCatalog, Fault::answer(-5));
    for (const auto& row : cases) {
        std::filesystem::remove(file);
        if (row.file) {
            std::ofstream(file) << *row.file;
        }
        row.setting ? settings::setString(kCountryKey, *row.setting) : settings::unset(kCountryKey);
        Ask();
        EXPECT_THAT(desk.agent.calls().at(kCatalog).arguments,
                    ElementsAre(R"({"appType":"serviceApp","visibility":"public")" + std::string(row.country)));
    }
}

TEST_F(ServiceApp, TheDashboardWouldBeAskedForInTheTvsLanguageAndZone) {
    const struct {
        const char *zone, *offset;
    } cases[] = {{"UTC0", "UTC+00:00"}, {"KST-9", "UTC+09:00"}, {"IST-5:30", "UTC+05:00"}, {"NST3:30", "UTC-03:00"}};
    settings::setString("db/menu_widget/language", "pt_BR.utf8");
    homeloom::desktop::system::setAppVersion("1.2.3");
    Start(HomeWith(kApp));
    for (const auto& [zone, offset] : cases) {
        setenv("TZ", zone, 1);
        tzset();
        Ask();
        EXPECT_TRUE(desk.log.contains(
            R"(service: PUBLIC_DR, body : {"client":{"os":"solenneTV","version":"1.2.3","language":"pt",)"
            R"("timeZoneOffset":")" +
            std::string(offset) + R"(","supportedTemplates":["BASIC_V5","BASIC_V6"]}})"))
            << zone;
    }
}

// The request's thread and the event's read the catalog at the same time, and now and then in vain.
TEST_F(ServiceApp, ManyMayAskAtOnce) {
    Start();
    desk.agent.fault(kCatalog, Fault::answer(-5).times(20));
    for (int i = 0; i < 50; ++i) {
        framework::request(kRequest, {{"location_id", "home"}});
        desk.agent.sendEvent(kInstalledAppEvent, R"({"locationId":"home","lifecycle":"CREATE"})");
    }
    desk.settle();
    EXPECT_EQ(desk.lines().size(), 100u);
    EXPECT_THAT(desk.lines().back(), testing::HasSubstr("installed-savings"));
}
