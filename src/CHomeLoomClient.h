#ifndef HOMELOOM_CHOMELOOMCLIENT_H
#define HOMELOOM_CHOMELOOMCLIENT_H

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include <VMFramework/CNoncopyable.h>

#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/HomeloomClient.h"
#include "common/include_internal/TPLContext.h"

namespace VMFramework::HomeLoom {

class CTransaction;

/// Decides which code serves a request, by its name, and on which job thread. Holds the session.
///
/// A request that its path does not answer is never answered: there is no generic error reply.
class CHomeLoomClient : public VMFramework::CNoncopyable, public TPL::CContext<CHomeLoomClient> {
public:
    /// The session is made, and the two job threads run, when this returns.
    static std::shared_ptr<CHomeLoomClient> Create();
    ~CHomeLoomClient() override;

    void Init();
    void Termi();

    /// These run on the calling thread when the context is idle, do little more than to queue a job, and throw
    /// CException "InvokeTask Fail!!" once the context is terminated.
    void RequestService(const std::shared_ptr<CTransaction>& transaction);
    void Search();
    void StopSearch();
    void GetDeviceList();

private:
    using RequestHandler = std::function<void(const std::shared_ptr<CTransaction>&)>;
    using RequestHandlerMap = std::unordered_map<std::string, RequestHandler>;

    CHomeLoomClient();

    void _Invoke(Task task);

    void _MakePriorRequestHandlerMap();
    void _MakeRequestHandlerMap();
    void _ConnectHLClient();
    void _DisconnectHLClient();

    void _RequestService(const std::shared_ptr<CTransaction>& transaction);
    void _Search();
    void _StopSearch();
    void _GetDeviceList();
    void _ScanDevices();

    void _RunRequest(const std::string& name, const std::shared_ptr<CTransaction>& transaction);
    void _RunPriorRequest(const std::string& name, const std::shared_ptr<CTransaction>& transaction);

    HomeloomClient _client;
    // Filled before the context is initiated. Afterwards the normal map is touched by the "Normal" thread only, and
    // the prior map is only read.
    RequestHandlerMap _requestHandlers;
    RequestHandlerMap _priorRequestHandlers;
    MsgDispatcher _normalDispatcher;
    MsgDispatcher _priorDispatcher;
    std::atomic<bool> _quit{false};
};

}  // namespace VMFramework::HomeLoom

#endif
