// Makes the session and its two job threads at the first use, and ends them in the order in which they depend on
// each other.
#include "CHomeLoomClientMgr.h"

#include "CHomeLoomClient.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

CHomeLoomClientMgr& CHomeLoomClientMgr::GetInstance() {
    static CHomeLoomClientMgr instance;
    return instance;
}

CHomeLoomClientMgr::CHomeLoomClientMgr() : _client(CHomeLoomClient::Create()) {}

CHomeLoomClientMgr::~CHomeLoomClientMgr() = default;

void CHomeLoomClientMgr::Init() {
    HL_TRACE(this);
    LogThrown([&] { _client->Init(); });
}

void CHomeLoomClientMgr::Termi() {
    HL_TRACE(this);
    Guarded([&] { _client->Termi(); });
}

void CHomeLoomClientMgr::Search() {
    HL_TRACE(this);
    Guarded([&] { _client->Search(); });
}

void CHomeLoomClientMgr::StopSearch() {
    HL_TRACE(this);
    Guarded([&] { _client->StopSearch(); });
}

void CHomeLoomClientMgr::GetDeviceList() {
    HL_TRACE(this);
    Guarded([&] { _client->GetDeviceList(); });
}

void CHomeLoomClientMgr::RequestService(const std::shared_ptr<CTransaction>& transaction) {
    HL_TRACE(this);
    Guarded([&] { _client->RequestService(transaction); });
}

}  // namespace VMFramework::HomeLoom
