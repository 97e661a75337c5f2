// The browser of whoever sits at this machine.
#ifndef TAVMAP_WORKBENCH_BROWSER_H
#define TAVMAP_WORKBENCH_BROWSER_H

#include <filesystem>
#include <string>

namespace workbench {

// Opens an address where there is a display, over a file that only the user may read: other users of the machine can
// read command lines, and the address has the token. The file goes with the object.
class Browser {
 public:
  // address: empty to open nothing. folder: for the file. Never fails: the address has been printed.
  Browser(const std::string& address, const std::filesystem::path& folder);
  ~Browser();
  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;

 private:
  std::filesystem::path file_;
};

// How to reach the port from the machine that the user sits at; empty when that is this one.
[[nodiscard]] std::string sshWords(int port);

}  // namespace workbench

#endif
