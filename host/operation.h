// The frame around every exported operation: checks of what the plug-in hands over, and what
// happens when they fail.
//
// Misuse (a null pointer, a bad index, a text without its end, a call out of order) is logged
// with the operation's name and ends the run with exit code 1. A failure of the host itself, such
// as an unwritable file, is logged as "ERROR: ..." and the operation returns its failure value.
#ifndef TAVMAP_HOST_OPERATION_H
#define TAVMAP_HOST_OPERATION_H

#include <fmt/core.h>

#include <cstddef>
#include <exception>
#include <new>
#include <string>
#include <type_traits>

#include "host/run.h"

namespace host {

class Operation {
 public:
  explicit Operation(const char* name) : run_(Run::active()), name_(name) {}

  Run& run() { return run_; }
  Workspace& workspace() { return run_.workspace(); }
  FrontEnd& frontEnd() { return run_.frontEnd(); }

  [[noreturn]] void misuse(const std::string& why);
  void require(bool condition, const std::string& why) {
    if (!condition) misuse(why);
  }

  // A text argument; `what` names it in the complaint, as in "the prompt is a null pointer".
  std::string text(const char* value, const char* what);

  // A record or buffer argument.
  template <typename Type>
  Type& record(Type* pointer, const char* what) {
    require(pointer != nullptr, fmt::format("the {} is a null pointer", what));
    return *pointer;
  }

  // A 0-based index below `count`.
  std::size_t index(int value, std::size_t count, const char* what);

  // A number that must be finite.
  float number(float value, const char* what);

  // A text field of a record, which must hold its terminating zero.
  template <std::size_t kBytes>
  std::string field(const char (&bytes)[kBytes], const char* what) {
    return field(bytes, kBytes, what);
  }

  void log(const std::string& html) { run_.logPane().append(html); }
  void logError(const std::string& why);

 private:
  std::string field(const char* bytes, std::size_t size, const char* what);

  Run& run_;
  const char* name_;
};

// Runs the body of an operation. After the run has ended every operation throws the end again,
// except while an exception passes through the plug-in or the plug-in is destroyed: then
// destructors may call the host, must not throw, and get `refused`.
template <typename Result, typename Body>
Result perform(const char* name, Result refused, Body body) {
  Operation operation(name);
  const bool mayThrow = operation.run().mayThrow() && std::uncaught_exceptions() == 0;
  try {
    if (operation.run().ended()) throw RunEnded(*operation.run().ended());
    return body(operation);
  } catch (const RunEnded& end) {
    operation.run().remember(end);
    if (mayThrow) throw;
  } catch (const std::bad_alloc&) {
    operation.logError(std::string(name) + ": the memory does not suffice");
  } catch (const std::exception& error) {
    operation.logError(error.what());
  }
  return refused;
}

// The same for an operation without a result.
template <typename Body>
void perform(const char* name, Body body) {
  perform(name, 0, [&](Operation& operation) {
    body(operation);
    return 0;
  });
}

}  // namespace host

#endif
