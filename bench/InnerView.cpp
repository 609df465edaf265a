// How long the view into a refrigerator takes: from the event that names its pictures to the answer with their
// addresses. The pictures are fetched all at once, so the time should be that of the slowest. They come from the cloud
// on loopback, first as from far away, each after a time of its own, then as fast as this machine can.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <desktop/Framework.h>
#include <desktop/Web.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>

#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Homes.h"

namespace framework = homeloom::desktop::framework;
namespace web = homeloom::desktop::web;
using simulator::Agent;
using simulator::Cloud;

namespace {

constexpr int kRounds = 21;
constexpr std::chrono::milliseconds kNearest{30};
constexpr std::chrono::milliseconds kFurther{10};  // each picture than the one before
constexpr double kWantedRatio = 1.25;

constexpr char kDevice[] = "fridge";
constexpr char kUri[] = "/udo/contents/provider/vs/0";

/// Waits for the answers to requests.
class Answers {
public:
    Answers() : _listener(framework::addListener([this](const framework::ReportPtr& report) { take(*report); })) {}
    ~Answers() { framework::removeListener(_listener); }
    Answers(const Answers&) = delete;
    Answers& operator=(const Answers&) = delete;

    void waitFor(framework::TransactionId request) {
        std::unique_lock<std::mutex> lock(_mutex);
        if (!_came.wait_for(lock, std::chrono::minutes(1), [&] { return _last == request; })) {
            bench::fail("a request was not answered");
        }
        if (!_isSuccess) {
            bench::fail("a view has no pictures");
        }
    }

private:
    void take(const framework::Report& report) {
        if (report.name == "hl_get_refrigerator_innerview_url") {
            const std::lock_guard<std::mutex> lock(_mutex);
            _last = report.transaction;
            _isSuccess = report.properties.flag("is_success");
            _came.notify_all();
        }
    }

    std::mutex _mutex;
    std::condition_variable _came;
    framework::TransactionId _last = 0;
    bool _isSuccess = false;
    const int _listener;
};

std::string contentsOf(const std::vector<std::string>& files) {
    std::string contents;
    for (const std::string& file : files) {
        contents += (contents.empty() ? "" : ",") + (R"({"x.com.norvane.da.fileid":")" + file + R"("})");
    }
    return R"({"x.com.norvane.da.contents":[)" + contents +
           R"(],"x.com.norvane.da.updatetime":"2024-05-01T09:00:00Z"})";
}

bench::Seconds timeOfView(Answers& answers, const std::vector<std::string>& files) {
    Agent& agent = Agent::instance();
    const std::string contents = contentsOf(files);
    std::vector<bench::Seconds> times;
    for (int round = 0; round < kRounds; ++round) {
        agent.resetCalls();
        const auto request =
            framework::request("hl_get_refrigerator_innerview_url", {{"device_id", std::string(kDevice)}});
        while (agent.callCount("homeloom_client_set_remote_representation") == 0) {
            std::this_thread::yield();
        }
        agent.waitIdle();
        const auto start = bench::Clock::now();
        agent.sendUpdate(kDevice, kUri, contents, "{}");
        answers.waitFor(request);
        times.push_back(bench::Clock::now() - start);
    }
    return bench::median(times);
}

void measure(Answers& answers, const std::vector<std::string>& files, const std::string& where, bool hasTarget) {
    bench::Seconds slowest{0};
    for (const std::string& file : files) {
        slowest = std::max(slowest, timeOfView(answers, {file}));
    }
    const bench::Seconds all = timeOfView(answers, files);
    const double ratio = all / slowest;
    bench::print({"inside view of 8 pictures, " + where, bench::text(all), "the slowest picture alone",
                  bench::text(slowest), ratio, hasTarget ? "at most 1.25" : "", !hasTarget || ratio <= kWantedRatio});
}

}  // namespace

int main() {
    simulator::Home home = homeloom::test::apartment();
    const simulator::Device refrigerator = *home.device(kDevice);
    home.models[refrigerator.vid].reactions.clear();  // it tells its pictures when it is measured
    bench::Desk desk(std::move(home));
    Cloud& cloud = Cloud::instance();
    cloud.start();
    web::routeOtherHosts(cloud.port());
    web::trust(cloud.caFile());
    desk.show();
    {
        Answers answers;
        auto distance = kNearest;
        for (const std::string& file : refrigerator.images) {
            cloud.fault("file_links", simulator::CloudFault::late(distance).only(file));
            distance += kFurther;
        }
        measure(answers, refrigerator.images, "far away", true);
        cloud.clearFaults();
        measure(answers, refrigerator.images, "at hand", false);
    }
    desk.close();
    cloud.stop();
    return bench::exitStatus();
}
