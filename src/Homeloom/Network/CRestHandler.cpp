// Collects the pieces of a web request and hands them to the transport.
#include "Homeloom/Network/CRestHandler.h"

namespace VMFramework::HomeLoom {

void CRestHandler::_SetMethod(HttpMethod method) {
    _method = method;
}

void CRestHandler::_SetUrl(const std::string& url) {
    _url = url;
}

void CRestHandler::_SetHeaderList(const std::list<std::string>& headers) {
    _headers = headers;
}

void CRestHandler::_SetBody(const std::string& body) {
    _body = body;
}

void CRestHandler::_SetDataBody(const std::string& dataBody) {
    _dataBody = dataBody;
}

void CRestHandler::_SetHeaderHandler(std::function<void(const std::string&)> handler) {
    _headerHandler.swap(handler);
}

long CRestHandler::_RequestHttp(std::string& responseBody) {
    return _curlHandler.RequestHttp(_method, _url, _headers, _body, _dataBody, _headerHandler, responseBody);
}

}  // namespace VMFramework::HomeLoom
