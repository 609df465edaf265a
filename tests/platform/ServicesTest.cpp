#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <dlog.h>
#include <gmock/gmock.h>
#include <unistd.h>
#include <vconf.h>

#include "desktop/Guard.h"
#include "desktop/Log.h"
#include "desktop/MainLoop.h"
#include "desktop/Settings.h"
#include "support/Gate.h"

namespace {

using namespace homeloom::desktop;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

constexpr char kLanguage[] = "db/menu_widget/language";

std::string takeText(char* text) {
    const std::unique_ptr<char, void (*)(void*)> owner(text, std::free);
    return text ? text : "(null)";
}

std::string readFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Settings, AreTypedAndMayFail) {
    int number = 5;
    EXPECT_EQ(takeText(vconf_get_str(kLanguage)), "(null)");
    EXPECT_LT(vconf_get_int(kLanguage, &number), 0);
    settings::setString(kLanguage, "en_GB");
    settings::setInt("db/agree", 1);
    EXPECT_LT(vconf_get_int(kLanguage, &number), 0);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(takeText(vconf_get_str("db/agree")), "(null)");
    EXPECT_EQ(vconf_get_int("db/agree", &number), 0);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(vconf_set_str("memory/out", "x"), 0);
    EXPECT_EQ(takeText(vconf_get_str("memory/out")), "x");
    settings::fail(settings::Operation::Get, kLanguage);
    settings::fail(settings::Operation::Set, "memory/out");
    settings::fail(settings::Operation::Notify, kLanguage);
    EXPECT_EQ(takeText(vconf_get_str(kLanguage)), "(null)");
    EXPECT_LT(vconf_set_str("memory/out", "y"), 0);
    EXPECT_LT(vconf_notify_key_changed(
                  kLanguage, [](keynode_t*, void*) {}, nullptr),
              0);
    EXPECT_LT(vconf_set_str(nullptr, "y"), 0);
    settings::fail(settings::Operation::Get, kLanguage, false);
    EXPECT_EQ(takeText(vconf_get_str(kLanguage)), "en_GB");
}

TEST(Settings, KeepsWhatIsToBeKept) {
    const std::string path = testing::TempDir() + "settings-" + std::to_string(getpid()) + ".json";
    settings::keepIn(path);
    settings::setString(kLanguage, "ko_KR");
    settings::setInt("db/agree", 1);
    settings::setInt("db/gone", 1);
    settings::setString("memory/out", "x");
    settings::unset("db/gone");
    EXPECT_EQ(readFile(path), "{\"db/agree\":1,\"db/menu_widget/language\":\"ko_KR\"}\n");
    settings::reset();
    EXPECT_THAT(settings::keys(), testing::IsEmpty());
    settings::keepIn(path);
    EXPECT_THAT(settings::keys(), ElementsAre("db/agree", kLanguage));
    for (const char* bad : {"no JSON", "[]", "{\"db/a\":[]}", "{\"memory/a\":1}", "{\"db/a\":3000000000}"}) {
        std::ofstream(path) << bad;
        EXPECT_THROW(settings::keepIn(path), std::runtime_error) << bad;
    }
    EXPECT_THROW(settings::keepIn("no/such/folder"), std::runtime_error);
    std::remove(path.c_str());
}

class SettingsWatch : public testing::Test {
protected:
    static void onChange(keynode_t* node, void* self) {
        static_cast<SettingsWatch*>(self)->changed(vconf_keynode_get_name(node));
    }
    void watch() { EXPECT_EQ(vconf_notify_key_changed(kLanguage, onChange, this), 0); }
    static int ignore() { return vconf_ignore_key_changed(kLanguage, onChange); }
    void waitForLoop() {
        loop.call([] {});
    }

    std::function<void(const std::string&)> changed = [this](const std::string& key) { keys.push_back(key); };
    std::vector<std::string> keys;
    MainLoop loop;
};

TEST_F(SettingsWatch, TellsOfEachChangeOnTheMainLoop) {
    std::thread::id mainThread;
    loop.call([&] { mainThread = std::this_thread::get_id(); });
    changed = [&](const std::string& key) {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        keys.push_back(key);
    };
    watch();
    watch();  // the same pair: replaced, not doubled
    EXPECT_EQ(settings::watchCount(), 1);
    settings::setString(kLanguage, "en_GB");
    settings::setString(kLanguage, "en_GB");  // told although it is the same
    settings::setString("db/else", "x");
    settings::unset(kLanguage);
    waitForLoop();
    EXPECT_THAT(keys, ElementsAre(kLanguage, kLanguage, kLanguage));
    loop.call([] { vconf_set_str(kLanguage, "ko_KR"); });  // never within the call that caused it
    waitForLoop();
    EXPECT_EQ(keys.size(), 4u);

    changed = [](const std::string&) { throw std::runtime_error("bad"); };
    settings::unset(kLanguage);
    waitForLoop();
    EXPECT_THAT(pluginExceptions(), ElementsAre("settings callback: bad"));
    EXPECT_EQ(ignore(), 0);
    EXPECT_LT(ignore(), 0);
    EXPECT_EQ(settings::watchCount(), 0);
}

TEST_F(SettingsWatch, IgnoringWaitsForARunningCallback) {
    Gate gate;
    std::atomic<bool> left{false};
    changed = [&](const std::string&) {
        gate.pass();
        left = true;
    };
    watch();
    settings::setString(kLanguage, "en_GB");
    settings::setString(kLanguage, "de_DE");  // would pass the gate again
    gate.waitUntilEntered();
    std::thread release([&] { gate.open(); });
    EXPECT_EQ(ignore(), 0);
    EXPECT_TRUE(left);
    release.join();
    waitForLoop();

    std::atomic<int> calls{0};
    changed = [&](const std::string&) {
        ++calls;
        EXPECT_EQ(ignore(), 0);  // from within: does not wait for itself
    };
    watch();
    settings::setString(kLanguage, "en_GB");
    settings::setString(kLanguage, "de_DE");
    waitForLoop();
    EXPECT_EQ(calls, 1);
}

TEST(Log, GoesToWhoeverTakesIt) {
    EXPECT_FALSE(dlog_is_enabled(DLOG_ERROR, "TAG"));
    EXPECT_EQ(dlog_print(DLOG_ERROR, "TAG", "nobody %s", "listens"), 0);
    const std::string path = testing::TempDir() + "log-" + std::to_string(getpid()) + ".txt";
    ASSERT_TRUE(log::toFile(path, DLOG_INFO));
    EXPECT_FALSE(log::toFile("/nowhere/at/all", DLOG_INFO));
    EXPECT_FALSE(dlog_is_enabled(DLOG_DEBUG, "TAG"));
    EXPECT_TRUE(dlog_is_enabled(DLOG_INFO, "TAG"));
    {
        const log::Capture capture(DLOG_ERROR);
        const std::string longText(5000, 'x');
        EXPECT_GT(dlog_print(DLOG_INFO, "TAG", "info"), 0);
        EXPECT_GT(dlog_print(DLOG_ERROR, "TAG", "%d %s", 7, longText.c_str()), 5000);
        ASSERT_EQ(capture.lines().size(), 1u);
        EXPECT_EQ(capture.lines()[0].message, "7 " + longText);
        EXPECT_EQ(capture.lines()[0].tag, "TAG");
        std::thread later([] { dlog_print(DLOG_ERROR, "TAG", "at last"); });
        EXPECT_TRUE(capture.waitFor("last"));
        EXPECT_FALSE(capture.waitFor("never", std::chrono::milliseconds(1)));
        later.join();
    }
    log::setTags({"OTHER"});
    EXPECT_FALSE(dlog_is_enabled(DLOG_ERROR, "TAG"));
    dlog_print(DLOG_ERROR, "TAG", "filtered");
    log::off();
    EXPECT_FALSE(dlog_is_enabled(DLOG_ERROR, "OTHER"));
    const std::string written = readFile(path);
    EXPECT_THAT(written, HasSubstr("TAG"));
    EXPECT_THAT(written, HasSubstr("info\n"));
    EXPECT_THAT(written, EndsWith("at last\n"));
    std::remove(path.c_str());
}

}  // namespace
