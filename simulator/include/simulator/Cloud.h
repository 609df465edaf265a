#ifndef HOMELOOM_SIMULATOR_CLOUD_H
#define HOMELOOM_SIMULATOR_CLOUD_H

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/CloudFault.h"

namespace simulator {

/// The platform's web endpoints, as an HTTPS server on loopback over the home that the Agent holds. Whoever has its
/// host names led here may use any of them: it shows each a certificate in that very name, signed by an authority that
/// is made at start.
///
///     devices      GET  /v1/devices/ID            the device, or 403 for one that isn't the account's
///     commands     POST /v1/devices/ID/commands   carries out the commands of the device's model
///     stream       POST /v1/stream?source_id=ID   the address of a camera's stream
///     file_links   GET  /udo/file_links/ID        leads on to the image, signed
///     files        GET  /udo/files/...            the image
///
/// All but the last want the account's token. Answers have a Content-Length and come in one piece.
///
/// All operations are thread-safe.
class Cloud {
public:
    static Cloud& instance();

    /// Listens on a free port of loopback. Does nothing when it runs. Throws std::runtime_error when it can't.
    void start();
    /// Cuts every answer short, ends all threads and takes the port back; faults and requests stay.
    void stop();
    /// 0 when it doesn't run.
    int port() const;
    /// The file with the authority's certificate; there while it runs.
    std::string caFile() const;
    /// From the next connection on, certificates come from an authority that nobody knows.
    void setForeignCertificates(bool isForeign);

    /// The file that the address of a picture leads to, as the endpoint `files` gives it in good health; nothing when
    /// the signature isn't the cloud's. Also while the cloud doesn't run.
    static std::optional<std::string> file(const std::string& path, const std::string& signature);

    // ---- Faults ----

    /// These throw std::invalid_argument for a name that is no endpoint. A fault replaces an earlier one of the
    /// endpoint with the same filter; one with a filter comes before one without.
    void fault(const std::string& endpoint, const CloudFault& fault);
    void clearFault(const std::string& endpoint);
    void clearFaults();
    std::multimap<std::string, CloudFault> faults() const;
    /// Requests whose answer is still kept back, or doesn't end.
    int pendingRequests() const;

    static const std::vector<std::string>& endpointNames();

    // ---- What it was asked ----

    struct Request {
        std::string endpoint;  // empty: none of ours
        std::string method;
        std::string host;
        std::string target;                                        // path and query as they came
        std::vector<std::pair<std::string, std::string>> headers;  // by name
        std::string body;

        /// Empty when there is none. Upper and lower case are the same.
        std::string header(const std::string& name) const;
    };
    /// In the order in which they came.
    std::vector<Request> requests() const;
    void resetRequests();

    Cloud(const Cloud&) = delete;
    Cloud& operator=(const Cloud&) = delete;

private:
    Cloud();

    class Server;
    const std::unique_ptr<Server> _server;
};

}  // namespace simulator

#endif
