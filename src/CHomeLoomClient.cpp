// Looks a request up in the two tables and queues it on the dispatcher that the table names.
#include "CHomeLoomClient.h"

#include <utility>

#include <VMFramework/CDirectInvoker.h>

#include "Common/CException.h"
#include "Common/CTransaction.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

std::shared_ptr<CHomeLoomClient> CHomeLoomClient::Create() {
    const std::shared_ptr<CHomeLoomClient> client(new CHomeLoomClient());
    client->_SetOwner(client);
    return client;
}

// The one place that knows which agent the plug-in has: all else knows the interface.
CHomeLoomClient::CHomeLoomClient()
    : _client(TesselHandler::GetInstance()), _normalDispatcher("Normal"), _priorDispatcher("Prior") {}

CHomeLoomClient::~CHomeLoomClient() = default;

void CHomeLoomClient::Init() {
    HL_TRACE(this);
    LogThrown([&] {
        _MakePriorRequestHandlerMap();
        _MakeRequestHandlerMap();
        Initiate(TPL::CDirectInvoker::GetInstance());
        _ConnectHLClient();
    });
}

void CHomeLoomClient::Termi() {
    HL_TRACE(this);
    Guarded([&] {
        _quit = true;
        _DisconnectHLClient();
        _priorDispatcher.Quit();
        _normalDispatcher.Quit();
        TerminateSync(TPL::CDirectInvoker::GetInstance());
    });
}

void CHomeLoomClient::_Invoke(Task task) {
    if (!InvokeTask(TPL::CDirectInvoker::GetInstance(), std::move(task))) {
        throw CException("InvokeTask Fail!!", kErrorFailed);
    }
}

void CHomeLoomClient::RequestService(const std::shared_ptr<CTransaction>& transaction) {
    HL_TRACE(this);
    _Invoke(std::bind(&CHomeLoomClient::_RequestService, std::placeholders::_1, transaction));
}

void CHomeLoomClient::Search() {
    HL_TRACE(this);
    _Invoke(std::bind(&CHomeLoomClient::_Search, std::placeholders::_1));
}

void CHomeLoomClient::StopSearch() {
    HL_TRACE(this);
    _Invoke(std::bind(&CHomeLoomClient::_StopSearch, std::placeholders::_1));
}

void CHomeLoomClient::GetDeviceList() {
    HL_TRACE(this);
    _Invoke(std::bind(&CHomeLoomClient::_GetDeviceList, std::placeholders::_1));
}

void CHomeLoomClient::_ConnectHLClient() {
    HL_TRACE(this);
    Guarded([&] { _client.Init(); });
}

void CHomeLoomClient::_DisconnectHLClient() {
    HL_TRACE(this);
    Guarded([&] { _client.Deinit(); });
}

void CHomeLoomClient::_RequestService(const std::shared_ptr<CTransaction>& transaction) {
    HL_TRACE(this);
    Guarded([&] {
        const std::string name = transaction->GetRequestPropertyList()->GetName();
        if (name.empty()) {
            throw CException("property_name is empty!", kErrorEmptyArgument);
        }
        if (_priorRequestHandlers.find(name) != _priorRequestHandlers.end()) {
            HL_LOGI("prior request : %s", name.c_str());
            // A prior request is tested against the quit flag here, a normal one when it runs.
            if (_quit) {
                HL_LOGE("already quit. do nothing");
                return;
            }
            _priorDispatcher.EnqueueData([this, name, transaction] { _RunPriorRequest(name, transaction); }, name);
            return;
        }
        HL_LOGI("normal request : %s", name.c_str());
        _normalDispatcher.EnqueueData([this, name, transaction] { _RunRequest(name, transaction); }, name);
    });
}

void CHomeLoomClient::_RunRequest(const std::string& name, const std::shared_ptr<CTransaction>& transaction) {
    HL_LOGI("normal request for %s", name.c_str());
    if (_quit) {
        HL_LOGE("already quit. do nothing");
        return;
    }
    // An unknown name leaves an empty function behind, whose call throws: the dispatcher logs it.
    _requestHandlers[name](transaction);
}

void CHomeLoomClient::_RunPriorRequest(const std::string& name, const std::shared_ptr<CTransaction>& transaction) {
    HL_LOGI("prior request for %s", name.c_str());
    _priorRequestHandlers[name](transaction);
}

// The framework searches by itself; there is nothing to start or stop.
void CHomeLoomClient::_Search() {
    HL_TRACE(this);
}

void CHomeLoomClient::_StopSearch() {
    HL_TRACE(this);
}

// The scan wants the session's mutex, for minutes in the worst case. Run in place, it would hold the framework's thread
// that long; and it would deadlock: a thread that reports under the device handler's mutex may find this job in the
// controller's context and run it, while the scheduler holds the session's mutex and waits for the device handler's.
void CHomeLoomClient::_GetDeviceList() {
    HL_TRACE(this);
    Guarded([&] { _normalDispatcher.EnqueueData([this] { _ScanDevices(); }, "GetDeviceList"); });
}

void CHomeLoomClient::_ScanDevices() {
    Guarded([&] { _client.StartScan(); });
}

}  // namespace VMFramework::HomeLoom
