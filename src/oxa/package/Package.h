#pragma once

namespace oxa {

// Runs the Register function of every unit, in unit order, so that the
// catalogue offers all of the library's classes.
void RegisterAll();

} // namespace oxa
