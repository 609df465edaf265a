#ifndef HOMELOOM_CHOMELOOMCLIENTMGR_H
#define HOMELOOM_CHOMELOOMCLIENTMGR_H

#include <memory>

namespace VMFramework::HomeLoom {

class CHomeLoomClient;
class CTransaction;

/// The door from the framework side to the cloud side. The first use makes the session object and its two
/// job threads.
///
/// Init passes on what the start throws; the other operations log and swallow it.
class CHomeLoomClientMgr {
public:
    static CHomeLoomClientMgr& GetInstance();

    virtual ~CHomeLoomClientMgr();
    CHomeLoomClientMgr(const CHomeLoomClientMgr&) = delete;
    CHomeLoomClientMgr& operator=(const CHomeLoomClientMgr&) = delete;

    void Init();
    void Termi();
    void Search();
    void StopSearch();
    void GetDeviceList();
    void RequestService(const std::shared_ptr<CTransaction>& transaction);

private:
    CHomeLoomClientMgr();

    std::shared_ptr<CHomeLoomClient> _client;
};

}  // namespace VMFramework::HomeLoom

#endif
