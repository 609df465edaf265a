// Makes the session and its two job threads at the first use, and ends them in the order in which they depend on
// each other.
#include "CHomeLoomClientMgr.h"

#include <exception>

#include "CHomeLoomClient.h"
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
    try {
        _client->Init();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        throw;
    }
}

void CHomeLoomClientMgr::Termi() {
    HL_TRACE(this);
    try {
        _client->Termi();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CHomeLoomClientMgr::Search() {
    HL_TRACE(this);
    try {
        _client->Search();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CHomeLoomClientMgr::StopSearch() {
    HL_TRACE(this);
    try {
        _client->StopSearch();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CHomeLoomClientMgr::GetDeviceList() {
    HL_TRACE(this);
    try {
        _client->GetDeviceList();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CHomeLoomClientMgr::RequestService(const std::shared_ptr<CTransaction>& transaction) {
    HL_TRACE(this);
    try {
        _client->RequestService(transaction);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

}  // namespace VMFramework::HomeLoom
