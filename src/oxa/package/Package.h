#pragma once

#include "oxa/oxa_export.h"

namespace oxa {

// Runs the Register function of every unit, in unit order, so that the
// catalogue offers all of the library's classes.
OXA_EXPORT void RegisterAll();

} // namespace oxa
