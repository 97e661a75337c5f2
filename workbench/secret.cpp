#include "workbench/secret.h"

#include <fmt/core.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace workbench {

std::string newSecret() {
  std::array<unsigned char, 32> bytes{};
  // So few bytes come at once or not at all.
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    throw std::system_error(errno, std::generic_category(), "the system gives no random numbers");
  std::string text;
  for (const unsigned char byte : bytes) text += fmt::format("{:02x}", byte);
  return text;
}

bool isSameSecret(std::string_view given, std::string_view secret) {
  if (given.size() != secret.size()) return false;
  unsigned different = 0;
  for (std::size_t i = 0; i < secret.size(); ++i)
    different |= static_cast<unsigned>(given[i]) ^ static_cast<unsigned>(secret[i]);
  return different == 0;
}

}  // namespace workbench
