// A program that exports no operation is no host: the plug-in refuses it quietly.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>

#include "hostapi/CNZQPluginInterface.h"

namespace {

TEST(HostWithoutOperations, IsRefusedByInitPlugin) {
  void* library = dlopen(TAVMAP_PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << dlerror();
  auto* createPlugin = reinterpret_cast<CNZQPluginInterface* (*)()>(dlsym(library, "createPlugin"));
  ASSERT_NE(createPlugin, nullptr);
  {
    const std::unique_ptr<CNZQPluginInterface> plugin(createPlugin());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(plugin->initPlugin());
    EXPECT_EQ(testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr(), "");
  }
  dlclose(library);
}

}  // namespace
