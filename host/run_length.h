// How long the run is that a dialog speaks of.
#ifndef TAVMAP_HOST_RUN_LENGTH_H
#define TAVMAP_HOST_RUN_LENGTH_H

#include <string>

namespace host {

class Workspace;

// Volumes of the VTC whose path is the last line of the dialog, else of the linked one; 0: there is none.
[[nodiscard]] int volumesOfRunIn(const std::string& html, const Workspace& workspace);

}  // namespace host

#endif
