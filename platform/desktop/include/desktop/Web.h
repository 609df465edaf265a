#ifndef HOMELOOM_DESKTOP_WEB_H
#define HOMELOOM_DESKTOP_WEB_H

#include <string>
#include <vector>

#include "desktop/CallFaults.h"

/// Where the plug-in's web requests go, and what fails on the way. All operations are thread-safe; they hold for
/// requests that are sent from then on.
///
///     web::trust("/tmp/cloud.pem");
///     web::routeHost("api.homeloom.example", server.port());
///     web::fail("send");                               // as if there were no network
///     web::fail("HTTPHEADER", firstCalls(1));
namespace homeloom::desktop::web {

/// Requests to the host, at whatever port, go to that port of this machine. The server there must prove to be the host.
/// Port 0 refuses them.
void routeHost(const std::string& host, int port);
/// The same for all hosts without a route of their own. Refused at the start: nothing leaves the machine.
void routeOtherHosts(int port);

/// The certificates that servers are believed by: a PEM file. Without one, those of this machine.
void trust(const std::string& caFile);

/// Lets a step of KRCurl::KRCurlEasy fail and do nothing: "Initialize", "send", "getInfo", or an option by its name
/// ("URL", "HTTPHEADER", ...). Throws std::invalid_argument for any other. Replaces what was set for it.
void fail(const std::string& step, CallRange range = {});
void pass();
/// The names of all steps, sorted.
const std::vector<std::string>& steps();
/// The steps that fail now, sorted.
std::vector<std::string> failingSteps();

/// Requests that were sent and have not ended.
int requestsUnderWay();

/// No routes, no failures, this machine's certificates.
void reset();

}  // namespace homeloom::desktop::web

#endif
