// Writes outputs whose reports browser tests look at: write_samples FOLDER.
#include <filesystem>
#include <iostream>

#include "tests/report/sample_outputs.h"

namespace {

sample_outputs::Sample nasty() {
  sample_outputs::Sample sample;
  sample.reference = "<script>document.title='taken'</script>";
  sample.condition =
      "\"quotes\" & '<b>bold</b>' \xE2\x80\xAE"
      "right-to-left \xE6\x97\xA5\xE6\x9C\xAC";
  sample.warning =
      "<img src=x onerror=\"document.title='taken'\"> </script><script>document.title='taken'</script>";
  sample.label = "</td><script>document.title='taken'</script>";
  return sample;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: write_samples FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder = argv[1];
  sample_outputs::writeTo(folder / "las", {sample_outputs::las()});
  sample_outputs::writeTo(folder / "ras", {sample_outputs::ras()});
  sample_outputs::writeTo(folder / "oblique", {sample_outputs::oblique()});
  sample_outputs::writeTo(folder / "nasty", nasty());
  sample_outputs::Sample nothing;
  nothing.survives = false;
  sample_outputs::writeTo(folder / "nothing", nothing);
  return 0;
}
