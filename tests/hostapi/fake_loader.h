// A dynamic loader under the test's control: it records look-ups and knows the symbols that a test
// gives it.
#ifndef TAVMAP_TESTS_HOSTAPI_FAKE_LOADER_H
#define TAVMAP_TESTS_HOSTAPI_FAKE_LOADER_H

#include <map>
#include <string>
#include <vector>

namespace fakes {

struct FakeLoader {
  bool canOpenExecutable = true;
  std::map<std::string, void*> symbols;

  std::vector<std::string> openings;  // "<executable>" or a file name, and the mode
  std::vector<std::string> lookups;   // in order
};

// The loader of the running test; reset by assigning a fresh one.
FakeLoader& loader();

// A loader that knows every operation of the table, each as a function that must not be called.
FakeLoader completeLoader();

// The names of the operations, in the order of the table.
std::vector<std::string> operationNames();

}  // namespace fakes

#endif
