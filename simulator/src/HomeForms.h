#ifndef HOMELOOM_SIMULATOR_HOMEFORMS_H
#define HOMELOOM_SIMULATOR_HOMEFORMS_H

#include "Form.h"

namespace simulator {

/// A home document, and a model: what their members are called, hold and mean.
const Form& homeForm();
const Form& modelForm();

/// What of a UI metadata document the plug-in reads. It takes documents of other forms too, and skips what it can't
/// read.
const Form& uiMetadataForm();

}  // namespace simulator

#endif
