#ifndef HOMELOOM_SIMULATOR_HOMELOADER_H
#define HOMELOOM_SIMULATOR_HOMELOADER_H

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Home.h"

namespace simulator {

struct HomeMistake {
    std::string file;
    std::string place;  // the path ("devices[3].vid"), or line and column of what is no JSON ("line 4, column 2")
    std::string reason;
};

/// Mistakes in a home document. what() has a line "FILE: PLACE: REASON" for each.
class HomeError : public std::runtime_error {
public:
    /// One at least.
    explicit HomeError(std::vector<HomeMistake> mistakes);
    HomeError(const std::string& file, const std::string& place, const std::string& reason);

    const std::vector<HomeMistake>& mistakes() const { return _mistakes; }

private:
    std::vector<HomeMistake> _mistakes;
};

/// Reads a home document and the model files that it names. Throws HomeError. `warnings`, if not null, gets what loads
/// but is hardly meant, as UI metadata that would be skipped.
Home loadHome(const std::string& file, std::vector<HomeMistake>* warnings = nullptr);
/// The same for a text; `name` stands for the file in messages, and files that it names are looked for beside `name`.
Home parseHome(std::string_view text, const std::string& name = "home", std::vector<HomeMistake>* warnings = nullptr);
/// Reads one model file (homes/models). Throws HomeError.
Model loadModel(const std::string& file);

/// A home as a document that loads again, models and all, laid out for people. Throws std::runtime_error with the
/// reason when something of it has no place in a document, as a text that is no JSON where a document is expected.
std::string writeHome(const Home& home);

/// A made-up home, for measuring. Ids and names are the same in each run: "device-0", "location-0", ...
struct HomePlan {
    int devices = 0;
    int hubDevices = 0;  // the first ones of the devices
    int locations = 1;
    int roomsPerLocation = 4;
    int scenes = 0;    // spread over the locations
    int routines = 0;  // likewise
};
Home generateHome(const HomePlan& plan);
Home generateHome(int devices);

}  // namespace simulator

#endif
