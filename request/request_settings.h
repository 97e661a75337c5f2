// The [settings] and [connectome] tables of a request file.
#ifndef TAVMAP_REQUEST_REQUEST_SETTINGS_H
#define TAVMAP_REQUEST_REQUEST_SETTINGS_H

#include <toml++/toml.h>

#include <string>

#include "request/request.h"

namespace study {

// Keys and ranges are those of the settings table. Throws InputError for unknown keys, wrong types
// and values out of range. q-values are returned in ascending order without duplicates.
[[nodiscard]] Settings parseSettings(const toml::table& table, const std::string& file);

// The [connectome] table. Throws InputError for unknown keys, a number out of range, and "all others" beside
// other names.
[[nodiscard]] ConnectomeSettings parseConnectome(const toml::table& table, const std::string& file);

}  // namespace study

#endif
