#include "Homeloom/IR/IRHandler.h"

#include "Common/CHLUtil.h"

namespace VMFramework::HomeLoom {

std::string IRHandler::GetParentIdOfIRDevice(const std::string& deviceJson) const {
    return CHLUtil::GetParentIdOfIRDevice(deviceJson);
}

}  // namespace VMFramework::HomeLoom
