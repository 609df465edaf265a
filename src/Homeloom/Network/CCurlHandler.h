#ifndef HOMELOOM_HOMELOOM_NETWORK_CCURLHANDLER_H
#define HOMELOOM_HOMELOOM_NETWORK_CCURLHANDLER_H

#include <functional>
#include <list>
#include <string>

#include <VMFramework/CNoncopyable.h>

namespace KRCurl {
class KRCurlEasy;
}

namespace VMFramework::HomeLoom {

enum class HttpMethod : int { None = 0, Get = 1, Post = 2, Put = 3, Delete = 4 };

/// The response code of a request that could not be carried out.
inline constexpr long kHttpTransportError = 999;

/// What a streaming request hands its response to.
struct RequestBase {
    virtual ~RequestBase() = default;

    /// Gets each piece of the body as it comes, on the thread of the request: true, the piece's length, and its text up
    /// to the first NUL.
    std::function<void(bool isAlive, unsigned length, const std::string& text)> callback;
};

/// Makes one web request at a time on the caller's thread. Nothing is retried.
class CCurlHandler : private VMFramework::CNoncopyable {
public:
    virtual ~CCurlHandler() = default;

    /// The response's code, or kHttpTransportError, which also stands for a limit of 15 seconds that has run out. Of a
    /// body that comes in several pieces `responseBody` keeps the last one. For a POST `dataBody` wins over `body`.
    /// Each line of the response's header goes to `headerHandler`, if there is one; what that throws comes out here.
    long RequestHttp(HttpMethod method, const std::string& url, const std::list<std::string>& headers,
                     const std::string& body, const std::string& dataBody,
                     std::function<void(const std::string&)> headerHandler, std::string& responseBody);
    // Part of the interface; no caller in the plug-in.
    /// The same for a response that goes on for as long as the server keeps it open: there is no time limit.
    long RequestHttpAlive(HttpMethod method, const std::string& url, const std::list<std::string>& headers,
                          const std::string& body, const std::string& dataBody, RequestBase* request);

    // Callbacks of the transfer. They return how many bytes they took; 0 ends it.
    static unsigned _HttpResponseBodyCb(char* data, unsigned size, unsigned nmemb, void* userdata);
    static unsigned _HttpAliveResponseBodyCb(char* data, unsigned size, unsigned nmemb, void* userdata);
    static unsigned _HttpResponseHeaderCb(char* data, unsigned size, unsigned nmemb, void* userdata);

private:
    bool _SetHttpMethod(KRCurl::KRCurlEasy& easy, HttpMethod method, const std::string& body,
                        const std::string& dataBody);
    void _PrintRequest(HttpMethod method, const std::string& url, const std::list<std::string>& headers,
                       const std::string& body);
};

}  // namespace VMFramework::HomeLoom

#endif
