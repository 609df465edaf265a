#ifndef HOMELOOM_SIMULATOR_HOMEFORMS_H
#define HOMELOOM_SIMULATOR_HOMEFORMS_H

#include "Form.h"

namespace simulator {

/// A home document, and a model: what their members are called, hold and mean.
const Form& homeForm();
const Form& modelForm();

}  // namespace simulator

#endif
