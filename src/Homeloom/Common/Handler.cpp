// The quit flag that a handler's long loops look at.
#include "Homeloom/Common/Handler.h"

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

Handler::Handler(const std::string& name) : _name(name) {
    HL_LOGI("[%s] created", _name.c_str());
}

Handler::~Handler() = default;

void Handler::Quit() {
    HL_LOGE("[%s] Quit", _name.c_str());
    _quit = true;
}

bool Handler::IsQuit() const {
    if (!_quit) {
        return false;
    }
    HL_LOGI("[%s] IsQuit true", _name.c_str());
    return true;
}

}  // namespace VMFramework::HomeLoom
