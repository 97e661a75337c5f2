#include "tests/app/program.h"

#include <sys/wait.h>

#include <cstdlib>

#include "tests/fakes/vtc_file.h"

namespace app_test {
namespace {

std::string quoted(const std::string& word) {
  std::string text = "'";
  for (char c : word) text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return text + "'";
}

}  // namespace

Finished runTavmap(const std::vector<std::string>& arguments, const std::string& folder,
                   const std::string& input) {
  return runUnder("", arguments, folder, input);
}

Finished runUnder(const std::string& checker, const std::vector<std::string>& arguments,
                  const std::string& folder, const std::string& input) {
  const fakes::TempFolder streams;
  fakes::writeBytes(streams.file("in"), input);
  std::string command = "cd " + quoted(folder) + " && " + checker + " " + quoted(APP_TEST_TAVMAP);
  for (const std::string& argument : arguments) command += " " + quoted(argument);
  for (const std::string redirection : {"< ", "> ", "2> "})
    command += " " + redirection +
               quoted(streams.file(redirection == "< "   ? "in"
                                   : redirection == "> " ? "out"
                                                         : "err"));
  const int status = std::system(command.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
          fakes::readBytes(streams.file("out")), fakes::readBytes(streams.file("err"))};
}

}  // namespace app_test
