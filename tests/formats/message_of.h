// What a FileError says.
#ifndef TAVMAP_TESTS_FORMATS_MESSAGE_OF_H
#define TAVMAP_TESTS_FORMATS_MESSAGE_OF_H

#include <gtest/gtest.h>

#include <string>

#include "formats/file_error.h"

namespace formats_test {

// The message without the path that starts it; fails the test when nothing is thrown.
template <typename Action>
std::string messageOf(Action action) {
  try {
    action();
  } catch (const formats::FileError& error) {
    return error.reason() + ". " + error.remedy() + ".";
  }
  ADD_FAILURE() << "no FileError was thrown";
  return "";
}

}  // namespace formats_test

#endif
