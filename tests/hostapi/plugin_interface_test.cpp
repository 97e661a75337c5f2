// The order of the virtual functions, as a host calls them: through the table, by slot.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "hostapi/CNZQPluginInterface.h"

namespace {

std::vector<std::string> called;

class Recorder : public CNZQPluginInterface {
 public:
  ~Recorder() override { called.emplace_back("destructor"); }
  bool execute() override {
    called.emplace_back("execute");
    return true;
  }
  bool initPlugin() override {
    called.emplace_back("initPlugin");
    return false;
  }
};

// The destructor takes two slots: without and with release of the memory.
enum Slot { kDestroy, kDestroyAndDelete, kExecute, kInitPlugin };

template <typename Result>
Result callSlot(CNZQPluginInterface* plugin, Slot slot) {
  void* const* table = nullptr;
  std::memcpy(&table, static_cast<void*>(plugin), sizeof table);
  return reinterpret_cast<Result (*)(CNZQPluginInterface*)>(table[slot])(plugin);
}

TEST(PluginInterface, SlotsAreDestructorExecuteInitPlugin) {
  called.clear();
  CNZQPluginInterface* plugin = new Recorder;
  EXPECT_TRUE(callSlot<bool>(plugin, kExecute));
  EXPECT_FALSE(callSlot<bool>(plugin, kInitPlugin));
  callSlot<void>(plugin, kDestroyAndDelete);
  EXPECT_THAT(called, testing::ElementsAre("execute", "initPlugin", "destructor"));
}

TEST(PluginInterface, HoldsNothingButTheTablePointer) {
  EXPECT_EQ(sizeof(CNZQPluginInterface), sizeof(void*));
}

}  // namespace
