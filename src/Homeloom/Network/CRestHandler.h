#ifndef HOMELOOM_HOMELOOM_NETWORK_CRESTHANDLER_H
#define HOMELOOM_HOMELOOM_NETWORK_CRESTHANDLER_H

#include <functional>
#include <list>
#include <string>

#include "Homeloom/Network/CCurlHandler.h"

namespace VMFramework::HomeLoom {

/// Base of all that makes web requests: holds the pieces of a request. They stay until they are set again, so a caller
/// that makes a request sets all that it needs. For one thread at a time.
class CRestHandler {
public:
    virtual ~CRestHandler() = default;

protected:
    virtual void _SetMethod(HttpMethod method) { _method = method; }
    virtual void _SetUrl(const std::string& url) { _url = url; }
    /// Whole lines, without their ends.
    virtual void _SetHeaderList(const std::list<std::string>& headers) { _headers = headers; }
    virtual void _SetBody(const std::string& body) { _body = body; }
    /// Data of a POST; wins over the body.
    virtual void _SetDataBody(const std::string& dataBody) { _dataBody = dataBody; }
    // Part of the interface; no caller in the plug-in.
    /// Is told of each line of the response's header.
    virtual void _SetHeaderHandler(std::function<void(const std::string&)> handler) { _headerHandler.swap(handler); }

    /// See CCurlHandler::RequestHttp.
    long _RequestHttp(std::string& responseBody) {
        return _curlHandler.RequestHttp(_method, _url, _headers, _body, _dataBody, _headerHandler, responseBody);
    }

private:
    CCurlHandler _curlHandler;
    HttpMethod _method = HttpMethod::None;
    std::string _url;
    std::list<std::string> _headers;
    std::string _body;
    std::string _dataBody;
    std::function<void(const std::string&)> _headerHandler;
};

}  // namespace VMFramework::HomeLoom

#endif
