// Follows the links to a refrigerator's pictures, one thread for each.
#include "Homeloom/Network/RefrigeratorInsideView.h"

#include <time.h>
#include <vmf_time.h>

#include <algorithm>
#include <cstring>
#include <future>
#include <list>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Network/CurlOption.h"
#include "Homeloom/Network/ServerSetting.h"
#include "Homeloom/Network/ServiceHosts.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kFileId[] = "x.com.norvane.da.fileid";
constexpr char kUpdateTime[] = "x.com.norvane.da.updatetime";
constexpr char kControl[] = "x.com.norvane.da.control";
constexpr char kCommand[] = "x.com.norvane.da.command";

constexpr char kFileLinksPath[] = "/udo/file_links/";
// By which the platform knows this application.
constexpr char kClientId[] = "Kbq7TzR2Wn";

enum FileServer : int { FILE_SERVER_PRODUCTION = 0, FILE_SERVER_ACCEPTANCE = 1, FILE_SERVER_DEVELOPMENT = 2 };

// In this very spelling: a header in upper case comes from a proxy on the way and leads to no picture.
constexpr char kLocationHeader[] = "location: ";

constexpr char kDateTimeFormat[] = "%Y%m%d%H%M%S";
constexpr std::size_t kDateTimeBytes = 128;
constexpr long kTimeoutSeconds = 15;
constexpr long kOn = 1;
constexpr int kNotTaken = -1;

bool IsWhiteSpace(char letter) {
    return letter == ' ' || (letter >= '\t' && letter <= '\r');
}

bool IsNoDigit(char letter) {
    return letter < '0' || letter > '9';
}

}  // namespace

bool RefrigeratorInsideView::RequestValueRefresh(const std::string& resourceUri, std::string& rcp) {
    if (resourceUri.empty()) {
        return false;
    }
    return GuardedOr(false, [&] {
        auto command = json::JsonValue::CreateObject();
        command.set(kCommand, "refresh");
        auto document = json::JsonValue::CreateObject();
        document.set(kControl, command);
        rcp = document.toString();
        return true;
    });
}

InsideViewUrls RefrigeratorInsideView::RequestImageUrls(const std::string& deviceId, const std::string& representation,
                                                        const std::string& accessToken) {
    const auto document = json::JsonValue::Create(representation);
    const std::vector<std::string> urls = getRequestUrls(deviceId, document);
    if (urls.empty()) {
        throw CException("error! no urls", kErrorFailed);
    }
    InsideViewUrls result;
    result.dateTime = getDateTime(document);
    result.urls = requestImageUrls(urls, accessToken);
    return result;
}

std::vector<std::string> RefrigeratorInsideView::getRequestUrls(const std::string& deviceId,
                                                                const json::JsonValue& representation) {
    const std::string base = getServerURL(getServerType());
    const std::string query = std::string("?cid=") + kClientId + "&di=" + deviceId;
    const auto contents = representation[kContents];
    std::vector<std::string> urls;
    for (std::size_t i = 0; contents.isArray() && i < contents.size(); ++i) {
        const json::JsonValue content = contents[i];
        urls.push_back(base + content[kFileId].asString() + query);
        HL_LOGI("inside view url : %s", urls.back().c_str());
    }
    return urls;
}

// Staging takes its pictures from production here; other services have other tables.
int RefrigeratorInsideView::getServerType() {
    switch (ServerSetting().GetIoTCloudServerEnv()) {
        case SERVER_ENV_ACC:
            return FILE_SERVER_ACCEPTANCE;
        case SERVER_ENV_DEV:
            return FILE_SERVER_DEVELOPMENT;
        default:
            return FILE_SERVER_PRODUCTION;
    }
}

std::string RefrigeratorInsideView::getServerURL(int type) {
    const char* host = ServiceHosts::kFilesProduction;
    if (type == FILE_SERVER_ACCEPTANCE) {
        host = ServiceHosts::kFilesAcceptance;
    } else if (type == FILE_SERVER_DEVELOPMENT) {
        host = ServiceHosts::kFilesDevelopment;
    }
    return std::string(host) + kFileLinksPath;
}

std::string RefrigeratorInsideView::getDateTime(const json::JsonValue& representation) {
    return GuardedOr(std::string(), [&]() -> std::string {
        std::string dateTime = representation[kUpdateTime].asString();
        if (dateTime.empty()) {
            return "";
        }
        HL_LOGI("date_time : %s", dateTime.c_str());
        dateTime.erase(std::remove_if(dateTime.begin(), dateTime.end(), IsNoDigit), dateTime.end());
        tm parts{};  // strptime leaves what the format doesn't name
        if (strptime(dateTime.c_str(), kDateTimeFormat, &parts) == nullptr) {
            return "";
        }
        const time_t local = vmf_time_utc_to_local(mktime(&parts));
        char text[kDateTimeBytes] = {};
        if (localtime_r(&local, &parts) == nullptr || strftime(text, sizeof text, kDateTimeFormat, &parts) == 0) {
            return "";
        }
        HL_LOGI("parsed_time : %s", text);
        return text;
    });
}

std::string RefrigeratorInsideView::requestImageUrls(const std::vector<std::string>& urls,
                                                     const std::string& accessToken) {
    HL_LOGI("request refrigerator inside view image url. count:[%zu]", urls.size());
    {
        // What an earlier request that failed has left counts for nothing.
        const MutexLock lock(_mutex);
        _imageUrls.clear();
    }
    std::vector<std::future<void>> futures;
    for (std::size_t index = 0; index < urls.size(); ++index) {
        futures.push_back(std::async(std::launch::async, requestRedirectUrl, urls[index], index, accessToken, this));
    }
    HL_LOGI("url request count : %zu", futures.size());
    for (std::size_t index = 0; index < futures.size(); ++index) {
        HL_LOGI("wait future, %zu", index);
        // Not get(): one that failed shows by its missing address, and the others are waited for all the same.
        futures[index].wait();
    }
    return takeImageUrls(urls.size());
}

std::string RefrigeratorInsideView::takeImageUrls(std::size_t count) {
    auto array = json::JsonValue::CreateArray();
    const MutexLock lock(_mutex);
    for (std::size_t index = 0; index < count; ++index) {
        const auto found = _imageUrls.find(index);
        if (found == _imageUrls.end()) {
            throw CException("url NOT FOUND in map, error!!", kErrorFailed);
        }
        array.append(found->second);
        HL_LOGI("[index:%zu] appeded to array", index);
    }
    _imageUrls.clear();
    std::string text = array.toString();
    HL_LOGI("url_str_array : %s", text.c_str());
    return text;
}

// The picture itself isn't wanted, only where the link leads: whatever the transfer's end, what counts is whether an
// address was seen on the way.
void RefrigeratorInsideView::requestRedirectUrl(const std::string& url, std::size_t index,
                                                const std::string& accessToken, RefrigeratorInsideView* view) {
    Guarded([&] {
        HL_LOGE("[index:%zu] request url : %s", index, url.c_str());
        RequestUserData userData{index, view};
        KRCurl::KRCurlEasy easy;
        if (!easy.Initialize()) {
            HL_LOGE("KRCurl init failed!");
            return;
        }
        const std::list<std::string> headers{"Authorization:Bearer " + accessToken};
        const KRCurl::DebugCallback callback = onRedirectUrl;
        const bool isReady =
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_HTTPHEADER, headers, "HTTPHEADER") &&
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_HTTPGET, kOn, "HTTPGET") &&
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_VERBOSE, kOn, "VERBOSE") &&
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_FOLLOWLOCATION, kOn, "FOLLOWLOCATION") &&
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_URL, url, "URL") &&
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_DEBUGFUNCTION, callback, "DEBUGFUNCTION") &&
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_DEBUGDATA, static_cast<void*>(&userData), "DEBUGDATA") &&
            SetCurlOption(easy, KRCurl::KRCURL_OPTION_TIMEOUT, kTimeoutSeconds, "TIMEOUT");
        if (!isReady) {
            return;
        }
        if (!easy.send()) {
            HL_LOGE("send failed");
        }
        easy.reset();
    });
}

int RefrigeratorInsideView::onRedirectUrl(KRCurl::DEBUG_TYPE type, char* data, unsigned size, void* userData) {
    if (userData == nullptr) {
        HL_LOGE("user data is null");
        return kNotTaken;
    }
    if (type != KRCurl::DEBUG_HEADER_IN) {
        return kNotTaken;
    }
    if (data == nullptr) {
        HL_LOGE("coming data is null");
        return kNotTaken;
    }
    const std::string line(data, strnlen(data, size));
    const std::size_t prefix = std::strlen(kLocationHeader);
    if (line.compare(0, prefix, kLocationHeader) != 0) {
        return kNotTaken;
    }
    std::string url = line.substr(prefix);
    url.erase(std::remove_if(url.begin(), url.end(), IsWhiteSpace), url.end());
    const auto* request = static_cast<const RequestUserData*>(userData);
    if (request->view == nullptr) {
        HL_LOGE("request_user_data->user_data_ is null");
        return kNotTaken;
    }
    request->view->addImageUrl(url, request->index);
    return 0;
}

// Of several redirections the last counts.
void RefrigeratorInsideView::addImageUrl(const std::string& url, std::size_t index) {
    const MutexLock lock(_mutex);
    _imageUrls[index] = url;
}

}  // namespace VMFramework::HomeLoom
