// TAVPlugin.so as a host loads it: found by name, called through the interface, held by a handle.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "hostapi/CNZQPluginInterface.h"
#include "tests/fakes/fake_host.h"

namespace {

class SharedObject : public testing::Test {
 protected:
  void SetUp() override {
    library = dlopen(TAVMAP_PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
  }
  void TearDown() override {
    if (library != nullptr) dlclose(library);
  }

  std::string text(const char* exported) {
    auto* function = reinterpret_cast<const char* (*)()>(dlsym(library, exported));
    return function == nullptr ? std::string("not exported: ") + exported : function();
  }

  std::unique_ptr<CNZQPluginInterface> create() {
    return std::unique_ptr<CNZQPluginInterface>(
        reinterpret_cast<CNZQPluginInterface* (*)()>(dlsym(library, "createPlugin"))());
  }

  void* library = nullptr;
};

TEST_F(SharedObject, IntroducesItself) {
  EXPECT_EQ(text("getPluginName"), "Tavmap Mapping (TAV) v1.5");
  EXPECT_EQ(
      text("getPluginDescription"),
      "Computes Tavmap Maps (<i>TAV</i>s) for selected reference regions (VOIs).<br><br>Tavmap mapping is a "
      "technique which explores directed influences (effective connectivity) between distinct regions in "
      "fMRI "
      "data. See The <b><a href=\"TAV_Help/main.html\">TAV Help Pages</a></b> for more...<br>");
  EXPECT_EQ(
      text("getAuthor"),
      "<i>The Tavmap authors</i>, the open neuroimaging community  (updated by the Tavmap maintainers)");
  EXPECT_EQ(text("getHelpFile"), "TAV_Help/main.html");
  EXPECT_EQ(text("getRegistrationOfGenericComponentLoader"), "Overlay Tavmap Maps (tav)");
  EXPECT_EQ(text("getGUIScript"), "");
}

TEST_F(SharedObject, BindsTheOperationsOfTheLoadingProgram) {
  fakes::FakeHost host;
  const auto plugin = create();
  EXPECT_TRUE(plugin->initPlugin());
  host.version = {1, 9, 9};
  EXPECT_FALSE(plugin->initPlugin());
  EXPECT_EQ(host.messages.size(), 1U);
}

TEST_F(SharedObject, RunsThroughTheInterface) {
  fakes::FakeHost host;
  host.vois = {{"V1", {1, 2, 3}}};
  const auto plugin = create();
  ASSERT_TRUE(plugin->initPlugin());
  host.cancelNext();
  EXPECT_FALSE(plugin->execute());
  EXPECT_THAT(host.log, testing::Contains("// TAV> Canceled by user."));
  EXPECT_THAT(host.troubles, testing::IsEmpty());
}

TEST_F(SharedObject, CreatesAFreshObjectEachTime) {
  fakes::FakeHost host;
  const auto first = create();
  const auto second = create();
  EXPECT_NE(first.get(), second.get());
}

}  // namespace
