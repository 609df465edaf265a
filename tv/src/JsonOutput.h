#ifndef HOMELOOM_TV_JSONOUTPUT_H
#define HOMELOOM_TV_JSONOUTPUT_H

#include <string>
#include <vector>

#include "HomeView.h"
#include "Report.h"

namespace homeloom::tv {

/// What the plug-in reported as one JSON document in one line. Members stand in the order in which the plug-in gave
/// them, with their types; there is nothing in it that differs between two equal runs.
std::string jsonLine(const Report& report);

/// The home as it stands.
std::string jsonLine(const HomeView& home);

/// A device of it.
std::string jsonLine(const HomeView::Device& device);

/// The end of a command: what it was, whether it succeeded, and what it said.
std::string jsonLine(const std::string& command, bool succeeded, const std::vector<std::string>& output);

}  // namespace homeloom::tv

#endif
