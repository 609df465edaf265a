// The two C functions that the host finds in the library.
#include "plugin_interface.h"

#include "CPluginMgr.h"
#include "Common/HLLog.h"

using VMFramework::HomeLoom::CPluginMgr;

bool CreatePlugin() {
    HL_LOGE("CreatePlugin()");
    CPluginMgr::GetInstance().Init();
    return true;
}

bool DestroyPlugin() {
    HL_LOGE("DestroyPlugin()");
    CPluginMgr::GetInstance().Deinit();
    return true;
}
