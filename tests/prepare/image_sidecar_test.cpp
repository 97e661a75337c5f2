#include "prepare/image_sidecar.h"

#include <gtest/gtest.h>

#include "request/problem.h"
#include "tests/support/message_of.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

class Sidecar : public ::testing::Test {
 protected:
  ImageSidecar read(const std::string& json) {
    scratch_.write("a_bold.json", json);
    return readImageSidecar(scratch_.folder() / "a_bold.nii.gz");
  }
  Scratch scratch_;
};

TEST_F(Sidecar, MissingFileSaysNothing) {
  const ImageSidecar sidecar = readImageSidecar(scratch_.folder() / "a_bold.nii.gz");
  EXPECT_TRUE(sidecar.file.empty());
  EXPECT_FALSE(sidecar.trSeconds.has_value());
}

TEST_F(Sidecar, ReadsTheRepetitionTime) {
  EXPECT_EQ(read(R"({"RepetitionTime": 2.5})").trSeconds, 2.5);
}

TEST_F(Sidecar, FindsFiltersUnderTheirManyNames) {
  EXPECT_EQ(read(R"({"SoftwareFilters": {"Bandpass filter": {"Low": 0.01}}})").filters,
            (std::vector<std::string>{"Bandpass filter"}));
  EXPECT_EQ(read(R"({"HighpassFilter": 0.008})").filters, (std::vector<std::string>{"HighpassFilter"}));
  EXPECT_EQ(read(R"({"Steps": {"LowPass": "0.1 Hz"}})").filters, (std::vector<std::string>{"LowPass"}));
  EXPECT_TRUE(
      read(R"({"TemporalFilter": "n/a", "HighpassFilter": false, "SoftwareFilters": {}})").filters.empty());
  EXPECT_TRUE(read(R"({"SkullStripped": true, "TaskName": "rest"})").filters.empty());
}

TEST_F(Sidecar, RefusesWhatIsNotJson) {
  EXPECT_EQ(messageOf<InputError>([&] { read("{"); }),
            (scratch_.folder() / "a_bold.json").string() + ": not a JSON object; repair or remove it");
}

TEST_F(Sidecar, RefusesWhatNestsWithoutEnd) {
  std::string nested;
  for (int i = 0; i < 200'000; ++i) nested += "{\"a\":";
  nested += "1" + std::string(200'000, '}');
  EXPECT_NE(messageOf<InputError>([&] { read(nested); }).find(": not a JSON object"), std::string::npos);
}

TEST_F(Sidecar, DisputedRepetitionTimesRequireAChoice) {
  const ImageSidecar sidecar = read(R"({"RepetitionTime": 2.0})");
  EXPECT_EQ(
      messageOf<InputError>([&] { return repetitionTime("a", 0, 1.0, sidecar); }),
      "run 'a': the image's header says TR = 1 s, a_bold.json says TR = 2 s; choose one with 'tr' (seconds)");
  EXPECT_EQ(repetitionTime("a", 1.5, 1.0, sidecar), 1.5);
  EXPECT_EQ(repetitionTime("a", 0, 2.0005, sidecar), 2.0);
  EXPECT_EQ(repetitionTime("a", 0, 0, sidecar), 2.0);
  EXPECT_EQ(repetitionTime("a", 0, 3.0, {}), 3.0);
}

TEST_F(Sidecar, AnotherRepetitionTimeThanTheGivenOneIsRefused) {
  const ImageSidecar sidecar = read(R"({"RepetitionTime": 2.0})");
  EXPECT_EQ(messageOf<InputError>([&] { requireTimeOf(sidecar, 2.5, "--tr"); }),
            "--tr says TR = 2.5 s, but " + sidecar.file.string() +
                " says TR = 2 s; leave --tr out, or correct the file");
  EXPECT_NO_THROW(requireTimeOf(sidecar, 2.0005, "--tr"));
  EXPECT_NO_THROW(requireTimeOf({}, 2.5, "--tr"));
}

TEST_F(Sidecar, KeepsTheResolutionAsItStands) {
  EXPECT_EQ(read(R"({"Resolution": "Matched with MNI"})").resolution, R"("Matched with MNI")");
  EXPECT_EQ(read(R"({"Resolution": {"2": "2 mm"}})").resolution, R"({"2":"2 mm"})");
  EXPECT_EQ(read(R"({"Resolution": null})").resolution, "");
  EXPECT_EQ(read("{}").resolution, "");
}

TEST_F(Sidecar, AnUnknownRepetitionTimeIsAskedFor) {
  EXPECT_EQ(messageOf<InputError>([&] { return repetitionTime("a", 0, 0, {}); }),
            "run 'a': neither the image's header nor a JSON sidecar states the repetition time; give it with "
            "'tr' (seconds)");
}

TEST(RepetitionTime, MustBePlausibleWhoeverGivesIt) {
  const ImageSidecar none;
  ImageSidecar sidecar;
  sidecar.file = "/d/x.json";
  sidecar.trSeconds = 2000;
  EXPECT_EQ(
      messageOf<InputError>([&] { return repetitionTime("a", 0, 0, sidecar); }),
      "run 'a': x.json gives a repetition time of 2000 s, which is not between 0.1 s and 20 s; give the "
      "right one with 'tr' (seconds)");
  EXPECT_EQ(
      messageOf<InputError>([&] { return repetitionTime("a", 0, 0.002, none); }),
      "run 'a': the image's header gives a repetition time of 0.002 s, which is not between 0.1 s and 20 "
      "s; give the right one with 'tr' (seconds)");
  EXPECT_EQ(
      messageOf<InputError>([&] { return repetitionTime("a", 20.5, 2, none); }),
      "run 'a': the request gives a repetition time of 20.5 s, which is not between 0.1 s and 20 s; give "
      "the right one with 'tr' (seconds)");
  EXPECT_EQ(repetitionTime("a", 0, 0.1, none), 0.1);
  EXPECT_EQ(repetitionTime("a", 20, 0.002, none), 20);
}

}  // namespace
}  // namespace study
