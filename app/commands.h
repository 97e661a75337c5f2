// The verbs of `tavmap`. Each is one file that declares its options on a subcommand and sets a
// callback; the callback throws when the verb fails.
#ifndef TAVMAP_APP_COMMANDS_H
#define TAVMAP_APP_COMMANDS_H

#include <CLI/CLI.hpp>

namespace app {

void addBidsCommand(CLI::App& program);
void addConnectomeCommand(CLI::App& program);
void addConvertCommand(CLI::App& program);
void addExportCommand(CLI::App& program);
void addGroupCommand(CLI::App& program);
void addHostCommand(CLI::App& program);
void addInfoCommand(CLI::App& program);
void addOrderCommand(CLI::App& program);
void addPictureCommand(CLI::App& program);
void addPlanCommand(CLI::App& program);
void addRecoverCommand(CLI::App& program);
void addReportCommand(CLI::App& program);
void addRunCommand(CLI::App& program);
void addSimulateCommand(CLI::App& program);
void addWorkbenchCommand(CLI::App& program);
void addWorkerCommand(CLI::App& program);

}  // namespace app

#endif
