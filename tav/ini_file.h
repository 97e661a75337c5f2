// The settings file TAVPlugin.ini: lines of "Key= value", "//" comments.
#ifndef TAVMAP_TAV_INI_FILE_H
#define TAVMAP_TAV_INI_FILE_H

#include <istream>
#include <ostream>
#include <set>
#include <string>

#include "tav/tav_pars.h"

namespace tav {

// Overwrites the global settings in `pars` by those of the stream, from its position to its end.
// True when the end is reached without error. The first error ends reading with false and one
// message in `err`; fields set before it keep their new values. Values are checked against the
// ranges of TAV_Pars. Lines longer than 255 characters are errors.
[[nodiscard]] bool loadINIFile(std::istream& file, TAV_Pars& pars, std::ostream& err);

// Adds the map type with this keyword (case-sensitive); false and a message for any other text.
[[nodiscard]] bool addMapType(const std::string& keyword, std::set<MapType>& types, std::ostream& err);

}  // namespace tav

#endif
