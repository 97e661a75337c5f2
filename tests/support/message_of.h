// What an action's failure says.
#ifndef TAVMAP_TESTS_SUPPORT_MESSAGE_OF_H
#define TAVMAP_TESTS_SUPPORT_MESSAGE_OF_H

#include <gtest/gtest.h>

#include <string>

#include "formats/file_error.h"

// The whole message; fails the test when nothing of this kind is thrown.
template <typename Error, typename Action>
std::string messageOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.what();
  }
  ADD_FAILURE() << "nothing was thrown";
  return "";
}

// A file error's message without the path that starts it.
template <typename Action>
std::string reasonOf(Action action) {
  try {
    action();
  } catch (const formats::FileError& error) {
    return error.reason() + ". " + error.remedy() + ".";
  }
  ADD_FAILURE() << "nothing was thrown";
  return "";
}

#endif
