// What the plug-in's way to the web costs: one of its requests beside the same one made with curl alone, each on a
// connection of its own, to the simulated cloud.
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <curl/curl.h>
#include <desktop/Web.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>

#include "Homeloom/Network/CCurlHandler.h"
#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Homes.h"

namespace {

using VMFramework::HomeLoom::CCurlHandler;
using VMFramework::HomeLoom::HttpMethod;

constexpr int kRequests = 500;
constexpr long kOk = 200;
constexpr char kUrl[] = "https://api.homeloom.example/v1/devices/washer";

struct ListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using List = std::unique_ptr<curl_slist, ListDeleter>;

void check(long code, const std::string& body) {
    if (code != kOk || body.empty()) {
        bench::fail("the cloud answered " + std::to_string(code));
    }
}

void requestByPlugin(const std::string& authorization) {
    std::string body;
    check(CCurlHandler().RequestHttp(HttpMethod::Get, kUrl, {authorization}, "", "", {}, body), body);
}

std::size_t append(char* data, std::size_t size, std::size_t count, void* body) {
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

void requestByCurl(const std::string& authorization, const std::string& route, const std::string& caFile) {
    const List headers(curl_slist_append(nullptr, authorization.c_str()));
    const List connectTo(curl_slist_append(nullptr, route.c_str()));
    const std::unique_ptr<CURL, void (*)(CURL*)> curl(curl_easy_init(), curl_easy_cleanup);
    std::string body;
    curl_easy_setopt(curl.get(), CURLOPT_HTTPGET, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl.get(), CURLOPT_URL, kUrl);
    curl_easy_setopt(curl.get(), CURLOPT_TIMEOUT, 15L);
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, &body);
    curl_easy_setopt(curl.get(), CURLOPT_CONNECT_TO, connectTo.get());
    curl_easy_setopt(curl.get(), CURLOPT_CAINFO, caFile.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_CAPATH, nullptr);
    long code = 0;
    curl_easy_perform(curl.get());
    curl_easy_getinfo(curl.get(), CURLINFO_RESPONSE_CODE, &code);
    check(code, body);
}

}  // namespace

int main() {
    auto& agent = simulator::Agent::instance();
    agent.load(homeloom::test::apartment());
    auto& cloud = simulator::Cloud::instance();
    cloud.start();
    homeloom::desktop::web::routeOtherHosts(cloud.port());
    homeloom::desktop::web::trust(cloud.caFile());
    const std::string authorization = "Authorization: Bearer " + agent.home().account.accessToken;
    const std::string route = "::127.0.0.1:" + std::to_string(cloud.port());
    const std::string caFile = cloud.caFile();

    // By turns, so that both meet the same machine.
    std::vector<bench::Seconds> plugin;
    std::vector<bench::Seconds> curl;
    for (int request = 0; request < kRequests; ++request) {
        plugin.push_back(bench::timeOf(1, 1, [&] { requestByPlugin(authorization); }));
        curl.push_back(bench::timeOf(1, 1, [&] { requestByCurl(authorization, route, caFile); }));
    }
    cloud.stop();
    const bench::Seconds ours = bench::median(plugin);
    const bench::Seconds floor = bench::median(curl);
    bench::print(
        {"web request", bench::text(ours), "the same with curl alone", bench::text(floor), ours / floor, "", true});
    return bench::exitStatus();
}
