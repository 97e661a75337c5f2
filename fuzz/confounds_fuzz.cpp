// Confounds tables of any text: a table or an InputError, and so is what is computed from a table.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "prepare/confound_table.h"
#include "request/confound_terms.h"
#include "request/problem.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

void requirePromises(const study::ConfoundTable& table) {
  require(table.volumes() > 0 && table.names.size() == table.columns.size());
  for (const auto& column : table.columns) require(column.size() == table.volumes());
  const int unsteady = study::nonSteadyStateVolumes(table);
  require(unsteady >= 0 && static_cast<std::size_t>(unsteady) <= table.volumes());
}

template <typename Action>
void attempt(Action action) {
  try {
    action();
  } catch (const study::InputError&) {
  }
}

void use(const study::ConfoundTable& table) {
  attempt([&] { require(study::framewiseDisplacement(table).size() == table.volumes()); });
  for (const std::string& name : table.names) {
    for (const std::size_t first : {std::size_t{0}, table.volumes() - 1, table.volumes()}) {
      attempt([&] {
        require(study::confoundColumns(table, {name}, first)[0].size() == table.volumes() - first);
      });
    }
    attempt([&] { (void)study::expandConfoundTerms({name}, table.names, "input"); });
  }
  attempt([&] { (void)study::expandConfoundTerms({"24motion", "acompcor5+cosine"}, table.names, "input"); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream text(std::string(reinterpret_cast<const char*>(data), size));
  attempt([&] {
    const study::ConfoundTable table = study::parseConfounds(text, "input");
    requirePromises(table);
    use(table);
  });
  return 0;
}
