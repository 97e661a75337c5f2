// Every forwarder calls the function that was bound under its own name, with the arguments in their
// order, and returns its result.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "hostapi/CNZQPluginInterfaceExtern.h"
#include "tests/hostapi/fake_loader.h"

namespace {

// What the last called fake saw.
std::string calledName;
std::vector<std::string> seenArguments;

template <typename T>
std::string bytesOf(T value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

// A value of type T that differs from the samples of other positions.
template <typename T>
T sample(int position) {
  T value{};
  const int number = 1000 + position;
  if constexpr (std::is_pointer_v<T>) {
    value = reinterpret_cast<T>(static_cast<std::uintptr_t>(number) * 16);
  } else {
    value = static_cast<T>(number);
  }
  return value;
}

constexpr int kResultPosition = 99;

template <typename... Arguments>
void note(const char* name, Arguments... arguments) {
  calledName = name;
  seenArguments = {bytesOf(arguments)...};
}

// One fake per operation.
namespace host {
template <typename T>
T result() {
  if constexpr (!std::is_void_v<T>) return sample<T>(kResultPosition);
}
#define ZQ_FIRST(name, ...) name __VA_OPT__(, ) __VA_ARGS__
#define ZQ_UNWRAP(...) __VA_ARGS__
#define ZQ_OPERATION(type, name, parameters, arguments) \
  type name parameters {                                \
    note(ZQ_FIRST(#name, ZQ_UNWRAP arguments));         \
    return result<type>();                              \
  }
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
}  // namespace host

template <typename Result, typename... Arguments, std::size_t... Position>
void expectForwards(const std::string& name, Result (*forwarder)(Arguments...),
                    std::index_sequence<Position...>) {
  const std::vector<std::string> given = {bytesOf(sample<Arguments>(static_cast<int>(Position)))...};
  calledName.clear();
  if constexpr (std::is_void_v<Result>) {
    forwarder(sample<Arguments>(static_cast<int>(Position))...);
  } else {
    EXPECT_EQ(forwarder(sample<Arguments>(static_cast<int>(Position))...), sample<Result>(kResultPosition))
        << name;
  }
  EXPECT_EQ(calledName, name);
  EXPECT_EQ(seenArguments, given) << name;
}

template <typename Result, typename... Arguments>
void expectForwards(const std::string& name, Result (*forwarder)(Arguments...)) {
  expectForwards(name, forwarder, std::index_sequence_for<Arguments...>{});
}

TEST(Forwarders, PassArgumentsAndResultUnchanged) {
  fakes::loader() = {};
#define ZQ_OPERATION(type, name, parameters, arguments) \
  fakes::loader().symbols[#name] = reinterpret_cast<void*>(&host::name);
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
  ASSERT_TRUE(InitZQAccess());
#define ZQ_OPERATION(type, name, parameters, arguments) expectForwards(#name, &::name);
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION
}

}  // namespace
