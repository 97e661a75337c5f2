// Tests the group that standard input describes and prints a line per place: effect, t, enhanced value and p,
// for a comparison with other programs. Numbers apart by white space: rows, columns, edges of the grid (3),
// connectivity, step of enhancement, 1 for permutations or 0 for sign flips, shuffles; the contrast; the
// design; the values, row by row ("nan": none).
#include <fmt/core.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <numeric>
#include <string>
#include <vector>

#include "inference/run_test.h"

namespace {

template <typename T>
T next() {
  std::string word;
  std::cin >> word;
  return static_cast<T>(std::stod(word));
}

template <typename T>
std::vector<T> nextOnes(std::size_t count) {
  std::vector<T> values;
  for (std::size_t i = 0; i < count; ++i) values.push_back(next<T>());
  return values;
}

void testInput() {
  const auto rows = next<std::size_t>(), columns = next<std::size_t>();
  io::GridSize grid;
  for (int* edge : {&grid.x, &grid.y, &grid.z}) *edge = next<int>();
  const int connectivity = next<int>();
  inference::TestOptions options;
  options.enhancement.step = next<double>();
  options.exchange = next<int>() ? inference::Exchange::kPermutations : inference::Exchange::kSignFlips;
  options.shuffles = next<int>();
  inference::Model model{std::vector<std::string>(columns, "column"), {}, nextOnes<double>(columns)};
  model.design = nextOnes<double>(rows * columns);
  const auto values = nextOnes<float>(rows * grid.voxels());
  std::vector<std::size_t> voxels(grid.voxels());
  std::iota(voxels.begin(), voxels.end(), 0U);
  const auto space = inference::spaceOfVoxels(grid, voxels, connectivity);
  const auto result = runTest(model, {rows, grid.voxels(), values.data()}, space, options);
  for (std::size_t i = 0; i < voxels.size(); ++i)
    fmt::print("{:.9g} {:.9g} {:.9g} {:.9g}\n", result.effect[i], result.t[i], result.enhanced[i],
               result.p[i]);
}

}  // namespace

int main() {
  try {
    testInput();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
