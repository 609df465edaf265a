// What is collected for a look into the plug-in: as text, as JSON, in a file; and the JSON library in a plug-in that
// comes and goes.

#include "Homeloom/Utils/DataDumpHelper.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <list>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/DataFolder.h"
#include "desktop/Log.h"

using VMFramework::HomeLoom::DataDumpHelper;

namespace {

const std::map<std::string, std::string> kMap = {{"a", "1"}, {"b", "2"}};
const std::vector<std::string> kTexts = {"x", "y"};
const std::vector<int> kNumbers = {3, -4};
const std::list<std::string> kList = {"l"};

}  // namespace

TEST(Dump, CollectsValuesAsText) {
    auto& dump = DataDumpHelper::GetInstance();
    const homeloom::desktop::log::Capture log(DLOG_INFO);
    const auto added = [&](const auto&... values) {
        dump.ClearInfo();
        dump.SetInfo(values...);
        return dump.GetInfo();
    };
    EXPECT_EQ(added(kMap), "a:1,b:2");
    EXPECT_EQ(added(kTexts), "x,y");
    EXPECT_EQ(added(std::vector<std::string>{"", "a", ""}), ",a,");
    EXPECT_EQ(added(kNumbers), "3,-4");
    EXPECT_EQ(added(kList), "l");
    EXPECT_EQ(added("one", std::string("two"), "three"), "one,two,three");
    EXPECT_EQ(added("a literal"), "a literal");
    EXPECT_EQ(added(false), "false");
    EXPECT_EQ(added(-7), "-7");
    dump.SetInfo(true);
    EXPECT_EQ(dump.GetInfo(), "-7true");
    for (const char* line : {"d[a:1]", "d[y]", "d[-4]", "d[three]", "d[a literal]", "d[true]"}) {
        EXPECT_TRUE(log.contains(line)) << line;
    }
}

TEST(Dump, MakesAnObjectOfMembersAndWritesIt) {
    auto& dump = DataDumpHelper::GetInstance();
    dump.SetInfo("gone as soon as there is JSON");
    dump.SetInfoToJson("map", kMap);
    dump.SetInfoToJson("texts", kTexts);
    dump.SetInfoToJson("numbers", kNumbers);
    dump.SetInfoToJson("list", kList);
    dump.SetInfoToJson("text", "quote \" and broken \xff");
    dump.SetInfoToJson("number", -5);
    dump.SetInfoToJson("flag", true);
    const std::string json = R"({"map":{"a":"1","b":"2"},"texts":["x","y"],"numbers":[3,-4],"list":["l"],)"
                             "\"text\":\"quote \\\" and broken \xef\xbf\xbd\",\"number\":-5,\"flag\":true";
    dump.GenerateJsonString();
    EXPECT_EQ(dump.GetInfo(), json + "}");
    dump.SetInfoToJson("late", false);
    dump.GenerateJsonString();
    EXPECT_EQ(dump.GetInfo(), json + ",\"late\":false}") << "the members serve more than once";

    EXPECT_TRUE(dump.FlushToFile("dump.json"));
    std::ifstream file(homeloom::desktop::dataFolder() / "dump.json");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), json + ",\"late\":false}");
    EXPECT_FALSE(dump.FlushToFile("/dump.json"));

    dump.ClearInfo();
    EXPECT_EQ(dump.GetInfo(), "");
    dump.GenerateJsonString();
    EXPECT_EQ(dump.GetInfo(), "{}");
}

TEST(Dump, ServesManyThreads) {
    auto& dump = DataDumpHelper::GetInstance();
    const auto work = [&] {
        for (int round = 0; round < 200; ++round) {
            dump.SetInfoToJson("key", round);
            dump.GenerateJsonString();
            dump.SetInfo(round);
            dump.GetInfo();
            dump.ClearInfo();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(dump.GetInfo(), "");
}

TEST(Dump, OutlivesThePluginThatUsesIt) {
    EXPECT_EQ(std::system(HOMELOOM_DUMP_HOST " " HOMELOOM_DUMP_MODULE), 0);
}
