// The [settings] table of a request file.
#ifndef TAVMAP_STUDY_REQUEST_SETTINGS_H
#define TAVMAP_STUDY_REQUEST_SETTINGS_H

#include <string>
#include <toml++/toml.h>

#include "study/request.h"

namespace study {

// Throws InputError for unknown keys, wrong types and values outside the ranges of the settings
// file of the plug-in. q-values are returned in ascending order without duplicates.
Settings parseSettings(const toml::table& table, const std::string& file);

// "bic", "aic", "hqc" or a number from 1 to 20; false for anything else.
bool parseOrder(const std::string& text, Settings& settings);

}  // namespace study

#endif
