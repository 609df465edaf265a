#ifndef HOMELOOM_SWEEP_SCRIPT_H
#define HOMELOOM_SWEEP_SCRIPT_H

#include <string>
#include <vector>

namespace homeloom::sweep {

/// Commands of homeloom-tv in their order, those with & at their end sent off without waiting; empty lines and comments
/// are left out.
using Script = std::vector<std::string>;

/// Throws std::runtime_error if there is no such file.
Script readScript(const std::string& file);

}  // namespace homeloom::sweep

#endif
