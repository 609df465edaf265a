#ifndef HOMELOOM_SIMULATOR_MODELREADER_H
#define HOMELOOM_SIMULATOR_MODELREADER_H

#include <string>
#include <vector>

#include "DocumentReader.h"
#include "simulator/Home.h"
#include "simulator/HomeLoader.h"

namespace simulator {

using Mistakes = std::vector<HomeMistake>;

void note(Mistakes& mistakes, const Node& node, const std::string& reason);

// All of these read nodes that have their form (HomeForms.h). What has the right form and can't be meant is noted and
// left out, so that everything wrong with a document is told at once.

/// The resources of a model, or those of a device, which set what its model gave.
void readResources(const Node& owner, std::vector<Resource>& resources, Mistakes& mistakes);

/// {"/uri": {"property": value}} as changes of these resources.
std::vector<Change> readChanges(const Node& node, const std::vector<Resource>& resources, Mistakes& mistakes);

/// Sets what the node tells; null takes a document away.
void readCore(const Node& node, CoreRecord& core);

struct ModelDocument {
    Model model;
    std::string canvas;  // empty: none
};
ModelDocument readModel(const Node& node, Mistakes& mistakes);

/// What of a model's UI metadata the plug-in would skip without a word.
Mistakes skippedMetadata(const Node& model);

}  // namespace simulator

#endif
