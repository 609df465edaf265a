#ifndef HOMELOOM_DESKTOP_DATAFOLDER_H
#define HOMELOOM_DESKTOP_DATAFOLDER_H

#include <filesystem>

namespace homeloom::desktop {

/// The folder that stands for the application's data folder of a TV: one for each process, made when somebody first
/// asks for it, and removed with all that is in it when the process ends.
const std::filesystem::path& dataFolder();

}  // namespace homeloom::desktop

#endif
