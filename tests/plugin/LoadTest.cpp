#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "support/Desk.h"
#include "support/Places.h"

namespace {

bool IsMapped() {
    std::ifstream maps("/proc/self/maps");
    const std::string text{std::istreambuf_iterator<char>(maps), {}};
    return text.find("libhomeloom.so") != std::string::npos;
}

long Threads() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
}

template <typename Function>
Function* Entry(void* library, const char* name) {
    return reinterpret_cast<Function*>(dlsym(library, name));
}

}  // namespace

TEST(Load, AHundredTimesInOneProcess) {
    Desk desk(homeloom::test::apartmentWith({"washer", "bedside-button", "hub-plug"}));
    long threads = 0;
    for (int round = 1; round <= 100; ++round) {
        SCOPED_TRACE(round);
        void* library = dlopen(homeloom::test::pluginFile().c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        ASSERT_TRUE(IsMapped());
        const int lists = desk.screen().lists;
        ASSERT_TRUE(Entry<bool()>(library, "CreatePlugin")());
        if (round % 4 != 0) {  // some are stopped in the middle of the start
            desk.waitFor("the washer", [&](const Screen& shown) {
                return shown.lists > lists && shown.stateText("washer") == "Ready";
            });
        }
        ASSERT_TRUE(Entry<bool()>(library, "DestroyPlugin")());
        ASSERT_EQ(dlclose(library), 0);
        ASSERT_FALSE(IsMapped());
        ASSERT_EQ(desk.agent.holdings().total(), 0);
        ASSERT_EQ(homeloom::desktop::framework::liveHandles().total(), 0u);
        ASSERT_EQ(homeloom::desktop::settings::watchCount(), 0);
        if (round == 1) {
            threads = Threads();  // the desk's own, which stay
        }
        ASSERT_LE(Threads(), threads);
        homeloom::desktop::framework::keepReports(0);
        homeloom::desktop::framework::keepReports(1000);
        desk.log.clear();
    }
}
