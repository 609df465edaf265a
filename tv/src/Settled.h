#ifndef HOMELOOM_TV_SETTLED_H
#define HOMELOOM_TV_SETTLED_H

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "Report.h"

namespace homeloom::tv {

class HomeView;

/// What the plug-in reported in one step, in the form in which two runs can be compared: what stands at the step's end,
/// in a fixed order, since the plug-in builds the home on several threads at once.
class SettledStep {
public:
    void add(const Report& report);
    /// Whether a list came: the home as a whole may have changed.
    bool hasList() const { return _hasList; }
    bool isEmpty() const { return _reports.empty(); }
    /// The step's reports as JSON documents, and nothing is left. A home that was built anew stands for the lists and
    /// the states that came on the way.
    std::vector<std::string> take(const HomeView& home);

private:
    using Key = std::tuple<Report::Kind, std::string, std::string, std::size_t>;

    std::map<Key, std::string> _reports;
    bool _hasList = false;
};

}  // namespace homeloom::tv

#endif
