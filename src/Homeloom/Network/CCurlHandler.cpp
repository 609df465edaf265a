// Sets up a web request option by option, with its time limit and size limit, and carries it out.
#include "Homeloom/Network/CCurlHandler.h"

#include <cstddef>
#include <cstring>
#include <utility>

#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Network/CurlOption.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr long kTimeoutSeconds = 15;  // for the whole transfer
constexpr long kOn = 1;

bool IsUsable(const char* data, const void* userdata) {
    if (data == nullptr) {
        HL_LOGE("buffer is null!");
        return false;
    }
    if (userdata == nullptr) {
        HL_LOGE("userdata is null!");
        return false;
    }
    return true;
}

// Nothing ends the data but its length; a NUL in it does as well.
std::string TextOf(const char* data, unsigned size, unsigned nmemb) {
    return {data, strnlen(data, static_cast<std::size_t>(size) * nmemb)};
}

bool Prepare(KRCurl::KRCurlEasy& easy) {
    if (!easy.Initialize()) {
        HL_LOGE("KRCurl init failed!");
        return false;
    }
    return true;
}

bool SetAddress(KRCurl::KRCurlEasy& easy, const std::list<std::string>& headers, const std::string& url) {
    return SetCurlOption(easy, KRCurl::KRCURL_OPTION_HTTPHEADER, headers, "HTTPHEADER") &&
           SetCurlOption(easy, KRCurl::KRCURL_OPTION_URL, url, "URL") &&
           SetCurlOption(easy, KRCurl::KRCURL_OPTION_VERBOSE, kOn, "VERBOSE");
}

bool SetReceiver(KRCurl::KRCurlEasy& easy, KRCurl::Callback callback, void* userdata) {
    return SetCurlOption(easy, KRCurl::KRCURL_OPTION_WRITEFUNCTION, callback, "WRITEFUNCTION") &&
           SetCurlOption(easy, KRCurl::KRCURL_OPTION_WRITEDATA, userdata, "WRITEDATA");
}

bool SetHeaderReceiver(KRCurl::KRCurlEasy& easy, KRCurl::Callback callback, void* userdata) {
    return SetCurlOption(easy, KRCurl::KRCURL_OPTION_HEADERFUNCTION, callback, "HEADERFUNCTION") &&
           SetCurlOption(easy, KRCurl::KRCURL_OPTION_HEADERDATA, userdata, "HEADERDATA");
}

long Send(KRCurl::KRCurlEasy& easy) {
    if (!easy.send()) {
        HL_LOGE("send failed");
        return kHttpTransportError;
    }
    long code = 0;
    if (!easy.getInfo(KRCurl::KRCURL_INFO_RESPONSE_CODE, &code)) {
        HL_LOGE("setoption getInfo(RESPONSE_CODE) failed");
        return kHttpTransportError;
    }
    HL_LOGI("response code: %ld", code);
    easy.reset();
    return code;
}

}  // namespace

long CCurlHandler::RequestHttp(HttpMethod method, const std::string& url, const std::list<std::string>& headers,
                               const std::string& body, const std::string& dataBody,
                               std::function<void(const std::string&)> headerHandler, std::string& responseBody) {
    return LogThrown([&] {
        responseBody.clear();
        _PrintRequest(method, url, headers, body);
        KRCurl::KRCurlEasy easy;
        const bool isReady = Prepare(easy) && _SetHttpMethod(easy, method, body, dataBody) &&
                             SetAddress(easy, headers, url) &&
                             SetCurlOption(easy, KRCurl::KRCURL_OPTION_TIMEOUT, kTimeoutSeconds, "TIMEOUT") &&
                             SetReceiver(easy, _HttpResponseBodyCb, &responseBody) &&
                             (!headerHandler || SetHeaderReceiver(easy, _HttpResponseHeaderCb, &headerHandler));
        return isReady ? Send(easy) : kHttpTransportError;
    });
}

long CCurlHandler::RequestHttpAlive(HttpMethod method, const std::string& url, const std::list<std::string>& headers,
                                    const std::string& body, const std::string& dataBody, RequestBase* request) {
    return LogThrown([&] {
        KRCurl::KRCurlEasy easy;
        const bool isReady = Prepare(easy) && _SetHttpMethod(easy, method, body, dataBody) &&
                             SetAddress(easy, headers, url) && SetReceiver(easy, _HttpAliveResponseBodyCb, request);
        return isReady ? Send(easy) : kHttpTransportError;
    });
}

bool CCurlHandler::_SetHttpMethod(KRCurl::KRCurlEasy& easy, HttpMethod method, const std::string& body,
                                  const std::string& dataBody) {
    const auto setText = [&](KRCurl::KRCURL_OPTION_TYPE option, const std::string& text, const char* name) {
        return SetCurlOption(easy, option, text, name);
    };
    const auto setCustom = [&](const std::string& name) {
        return setText(KRCurl::KRCURL_OPTION_CUSTOMREQUEST, name, "CUSTOMREQUEST") &&
               setText(KRCurl::KRCURL_OPTION_COPYPOSTFIELDS, body, "COPYPOSTFIELDS");
    };
    bool isSet = false;
    switch (method) {
        case HttpMethod::Get:
            isSet = SetCurlOption(easy, KRCurl::KRCURL_OPTION_HTTPGET, kOn, "HTTPGET");
            break;
        case HttpMethod::Post:
            if (!dataBody.empty()) {
                isSet = SetCurlOption(easy, KRCurl::KRCURL_OPTION_POSTFIELDSIZE, static_cast<long>(dataBody.size()),
                                      "POSTFIELDSIZE") &&
                        setText(KRCurl::KRCURL_OPTION_POSTFIELDS, dataBody, "POSTFIELDS");
            } else if (!body.empty()) {
                isSet = setText(KRCurl::KRCURL_OPTION_COPYPOSTFIELDS, body, "COPYPOSTFIELDS");
            } else {
                isSet = SetCurlOption(easy, KRCurl::KRCURL_OPTION_POST, kOn, "POST");
            }
            break;
        case HttpMethod::Put:
            isSet = setCustom("PUT");
            break;
        case HttpMethod::Delete:
            isSet = setCustom("DELETE");
            break;
        default:
            HL_LOGE("invalid http method!");
            break;
    }
    if (!isSet) {
        HL_LOGE("set method failed!");
    }
    return isSet;
}

// Access tokens are logged as they are: they tell why a request was refused.
void CCurlHandler::_PrintRequest(HttpMethod, const std::string& url, const std::list<std::string>& headers,
                                 const std::string& body) {
    HL_LOGI("url: %s", url.c_str());
    for (const std::string& header : headers) {
        HL_LOGI("header: %s", header.c_str());
    }
    HL_LOGI("body: %s", body.c_str());
}

// Assigned, not appended: what the callers ask for are short texts that come in one piece, and of anything else they
// expect the last piece.
unsigned CCurlHandler::_HttpResponseBodyCb(char* data, unsigned size, unsigned nmemb, void* userdata) {
    if (!IsUsable(data, userdata)) {
        return 0;
    }
    *static_cast<std::string*>(userdata) = TextOf(data, size, nmemb);
    return size * nmemb;
}

unsigned CCurlHandler::_HttpAliveResponseBodyCb(char* data, unsigned size, unsigned nmemb, void* userdata) {
    if (!IsUsable(data, userdata)) {
        return 0;
    }
    // A copy, since the function may replace itself.
    const auto callback = static_cast<RequestBase*>(userdata)->callback;
    callback(true, size * nmemb, TextOf(data, size, nmemb));
    return size * nmemb;
}

unsigned CCurlHandler::_HttpResponseHeaderCb(char* data, unsigned size, unsigned nmemb, void* userdata) {
    if (!IsUsable(data, userdata)) {
        return 0;
    }
    const auto& handler = *static_cast<std::function<void(const std::string&)>*>(userdata);
    handler(TextOf(data, size, nmemb));
    return size * nmemb;
}

}  // namespace VMFramework::HomeLoom
