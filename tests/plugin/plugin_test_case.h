// What every test of the dialogs needs: a scripted host, a bound plug-in, a folder for files. A test
// fails when a prompt met no fitting answer or an answer was left over.
#ifndef TAVMAP_TESTS_PLUGIN_PLUGIN_TEST_CASE_H
#define TAVMAP_TESTS_PLUGIN_PLUGIN_TEST_CASE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "plugin/TAVPlugin.h"
#include "tests/fakes/fake_host.h"
#include "tests/fakes/vtc_file.h"
#include "tests/support/scratch.h"

class PluginTestCase : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(plugin.initPlugin()); }
  void TearDown() override {
    EXPECT_THAT(host.troubles, testing::IsEmpty());
    EXPECT_EQ(host.unusedAnswers(), 0U);
  }

  // Writes a file with the default geometry, header alone, and returns its path.
  std::string headerOnlyVtc(const std::string& name, const fakes::VtcSpec& spec = {}) {
    const std::string path = folder.file(name);
    fakes::writeBytes(path, fakes::vtcHeaderBytes(spec));
    return path;
  }

  // The texts of all prompts, in order.
  [[nodiscard]] std::vector<std::string> promptTexts() const {
    std::vector<std::string> texts;
    for (const fakes::FakePrompt& prompt : host.prompts) texts.push_back(prompt.text);
    return texts;
  }

  fakes::FakeHost host;
  TAVPlugin plugin;
  tav::TAV_Pars pars;
  Scratch folder;
};

#endif
