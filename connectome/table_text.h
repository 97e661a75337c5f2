// Cells and tables as texts.
#ifndef TAVMAP_CONNECTOME_TABLE_TEXT_H
#define TAVMAP_CONNECTOME_TABLE_TEXT_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "connectome/nodes.h"

namespace connectome {

// Nine significant digits, n/a for what is not finite.
[[nodiscard]] std::string numberText(double value);

// A line of names, then a line per node.
[[nodiscard]] std::string matrixText(const std::vector<Node>& nodes,
                                     const std::function<std::string(std::size_t, std::size_t)>& cell);

}  // namespace connectome

#endif
