#ifndef HOMELOOM_SIMULATOR_HOMELOADER_H
#define HOMELOOM_SIMULATOR_HOMELOADER_H

#include <stdexcept>
#include <string>
#include <string_view>

#include "simulator/Home.h"

namespace simulator {

/// A mistake in a home document. what() is "FILE: PLACE: REASON".
class HomeError : public std::runtime_error {
public:
    HomeError(const std::string& file, const std::string& place, const std::string& reason);

    const std::string& file() const { return _file; }
    /// The path in the document ("devices[3].vid"), or line and column of what is no JSON ("line 4, column 2").
    const std::string& place() const { return _place; }
    const std::string& reason() const { return _reason; }

private:
    std::string _file;
    std::string _place;
    std::string _reason;
};

/// Reads a home document and the model files that it names. Throws HomeError.
Home loadHome(const std::string& file);
/// The same for a text; `name` stands for the file in messages, and files that it names are looked for beside `name`.
Home parseHome(std::string_view text, const std::string& name = "home");
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
