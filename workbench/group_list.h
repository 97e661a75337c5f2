// Which tests over participants there are below a folder.
#ifndef TAVMAP_WORKBENCH_GROUP_LIST_H
#define TAVMAP_WORKBENCH_GROUP_LIST_H

#include <filesystem>
#include <nlohmann/json_fwd.hpp>

#include "workbench/folder_guard.h"

namespace workbench {

// The tests of the participants of one output folder, an entry each: {"folder", "path" of the files, "test",
// "report" or null, "problem" when they cannot be read, "cells": [{"title", "condition", "map", "positive",
// "negative" or null, "images": [{"what", "file"}], "thresholds": [{"q", "threshold" or null}] of t}]}. Empty
// when there are none.
[[nodiscard]] nlohmann::ordered_json groupsJson(const std::filesystem::path& outDir,
                                                const FolderGuard& folders);

}  // namespace workbench

#endif
