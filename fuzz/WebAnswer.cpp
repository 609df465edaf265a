// What the cloud answers: to whoever asks for a camera's stream, stops it, looks for this TV's hub, or follows the link
// of a picture.

#include <algorithm>

#include <desktop/Web.h>
#include <simulator/Cloud.h>

#include <VMFramework/JsonValue.h>

#include "Homeloom/Network/CAVPCameraStreamRequester.h"
#include "Homeloom/Network/CHubRequester.h"
#include "Homeloom/Network/CNoneAVPCameraStreamRequester.h"
#include "Homeloom/Network/RefrigeratorInsideView.h"
#include "support/Input.h"

using namespace VMFramework::HomeLoom;
using simulator::Cloud;
using simulator::CloudFault;
using VMFramework::json::JsonValue;

namespace {

constexpr char kPicture[] = R"({"x.com.norvane.da.contents":[{"x.com.norvane.da.fileid":"shelf"}]})";

/// Runs from the first input to the end of the program, and is what all hosts lead to.
Cloud& runningCloud() {
    static const struct Run {
        Run() {
            Cloud::instance().start();
            homeloom::desktop::web::trust(Cloud::instance().caFile());
            homeloom::desktop::web::routeOtherHosts(Cloud::instance().port());
        }
        ~Run() { Cloud::instance().stop(); }
    } run;
    return Cloud::instance();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::text(data, size);
    Cloud& cloud = runningCloud();
    cloud.resetRequests();
    for (const char* endpoint : {"stream", "commands", "devices"}) {
        cloud.fault(endpoint, CloudFault::body(text));
    }
    std::string stream;
    if (CAVPCameraStreamRequester().RequestStreamUrl("token", "camera", stream)) {
        fuzz::require(JsonValue::Create(stream)["OutHomeURL"].isString(), "a stream has an address");
    }
    CNoneAVPCameraStreamRequester().StopStream("token", "camera");
    fuzz::require(CHubRequester().RequestIsHubExist("token", "hub"), "no body denies a hub");

    cloud.fault("file_links", CloudFault::header("location: " + text).times(1));
    try {
        const std::string urls = RefrigeratorInsideView().RequestImageUrls("fridge", kPicture, "token").urls;
        const bool isAscii = std::all_of(urls.begin(), urls.end(), [](char letter) { return (letter & 0x80) == 0; });
        fuzz::require(!isAscii || JsonValue::Create(urls).size() == 1, "each picture has an address");
    } catch (const std::exception&) {
        // The job logs it.
    }
    return 0;
}
