#include "app/commands.h"

namespace app {

void addInfoCommand(CLI::App& program) { (void)program; }

}  // namespace app
