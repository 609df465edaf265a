#include "Script.h"

#include <fstream>
#include <stdexcept>

namespace homeloom::sweep {

Script readScript(const std::string& file) {
    std::ifstream stream(file);
    if (!stream) {
        throw std::runtime_error("there is no script " + file);
    }
    Script script;
    for (std::string line; std::getline(stream, line);) {
        const std::size_t start = line.find_first_not_of(" \t\r");
        if (start != std::string::npos && line[start] != '#') {
            script.push_back(line.substr(start, line.find_last_not_of(" \t\r") + 1 - start));
        }
    }
    return script;
}

}  // namespace homeloom::sweep
