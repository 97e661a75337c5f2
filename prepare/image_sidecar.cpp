#include "prepare/image_sidecar.h"

#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

#include "formats/file_error.h"
#include "formats/json_file.h"
#include "request/problem.h"

namespace study {
namespace {

using nlohmann::json;
constexpr double kAgreementSeconds = 0.001;
constexpr double kLeastTrSeconds = 0.1, kLargestTrSeconds = 20;
constexpr const char* kNoObject = ": not a JSON object; repair or remove it";

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

bool speaksOfFiltering(const std::string& key) {
  const std::string name = lowerCase(key);
  const auto has = [&](const char* part) { return name.find(part) != std::string::npos; };
  return has("bandpass") || has("band-pass") || has("highpass") || has("high-pass") || has("lowpass") ||
         has("low-pass") || has("temporalfilter") || has("temporal filter") || has("softwarefilters");
}

bool saysNothing(const json& value) {
  if (value.is_null() || value == false ||
      ((value.is_object() || value.is_array() || value.is_string()) && value.empty())) {
    return true;
  }
  return value.is_string() && (lowerCase(value) == "n/a" || lowerCase(value) == "none");
}

// SoftwareFilters is the standard's field for any filter; what it holds is named rather than it.
void collectFilters(const json& object, std::vector<std::string>& filters) {
  for (const auto& [key, value] : object.items()) {
    if (lowerCase(key) == "softwarefilters" && value.is_object()) {
      for (const auto& [name, settings] : value.items()) filters.push_back(name);
    } else if (speaksOfFiltering(key) && !saysNothing(value)) {
      filters.push_back(key);
    } else if (value.is_object()) {
      collectFilters(value, filters);
    }
  }
}

// The reader of this program's files: it refuses what nests without end.
json parsed(const std::string& text, const std::filesystem::path& file) {
  try {
    return formats::parseJson(text, file.string());
  } catch (const formats::FileError&) {
    throw InputError(file.string() + kNoObject);
  }
}

std::string writtenJson(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::filesystem::path besideImage(const std::filesystem::path& image) {
  std::string name = image.filename().string();
  for (const std::string extension : {".nii.gz", ".nii"}) {
    if (name.size() > extension.size() &&
        name.compare(name.size() - extension.size(), extension.size(), extension) == 0) {
      return image.parent_path() / (name.substr(0, name.size() - extension.size()) + ".json");
    }
  }
  return {};
}

std::string seconds(double value) {
  std::ostringstream text;
  text << value << " s";
  return text.str();
}

// Milliseconds that pass for seconds, or the other way round, would shift events and name lags wrongly.
double plausible(const std::string& run, double trSeconds, const std::string& source) {
  if (trSeconds >= kLeastTrSeconds && trSeconds <= kLargestTrSeconds) return trSeconds;
  throw InputError(fmt::format(
      "run '{}': {} gives a repetition time of {}, which is not between {} and {}; give the right "
      "one with 'tr' (seconds)",
      run, source, seconds(trSeconds), seconds(kLeastTrSeconds), seconds(kLargestTrSeconds)));
}

}  // namespace

ImageSidecar parseImageSidecar(const std::string& text, const std::filesystem::path& file) {
  ImageSidecar sidecar;
  const json content = parsed(text, file);
  if (!content.is_object()) throw InputError(file.string() + kNoObject);
  sidecar.file = file;
  const auto tr = content.find("RepetitionTime");
  if (tr != content.end() && tr->is_number() && tr->get<double>() > 0) sidecar.trSeconds = tr->get<double>();
  const auto resolution = content.find("Resolution");
  if (resolution != content.end() && !saysNothing(*resolution)) sidecar.resolution = writtenJson(*resolution);
  collectFilters(content, sidecar.filters);
  return sidecar;
}

ImageSidecar readImageSidecar(const std::filesystem::path& image) {
  const std::filesystem::path file = besideImage(image);
  std::ifstream stream(file);
  if (file.empty() || !stream) return {};
  return parseImageSidecar({std::istreambuf_iterator<char>(stream), {}}, file);
}

void requireTimeOf(const ImageSidecar& sidecar, double given, const std::string& who) {
  if (!sidecar.trSeconds || std::abs(*sidecar.trSeconds - given) <= kAgreementSeconds) return;
  throw InputError(fmt::format("{} says TR = {}, but {} says TR = {}; leave {} out, or correct the file", who,
                               seconds(given), sidecar.file.string(), seconds(*sidecar.trSeconds), who));
}

double repetitionTime(const std::string& run, double chosenSeconds, double headerSeconds,
                      const ImageSidecar& sidecar) {
  if (chosenSeconds > 0) return plausible(run, chosenSeconds, "the request");
  const bool headerKnows = std::isfinite(headerSeconds) && headerSeconds > 0;
  if (!sidecar.trSeconds && !headerKnows) {
    throw InputError(
        fmt::format("run '{}': neither the image's header nor a JSON sidecar states the repetition time; "
                    "give it with 'tr' (seconds)",
                    run));
  }
  if (!sidecar.trSeconds) return plausible(run, headerSeconds, "the image's header");
  if (headerKnows && std::abs(headerSeconds - *sidecar.trSeconds) > kAgreementSeconds) {
    throw InputError(fmt::format(
        "run '{}': the image's header says TR = {}, {} says TR = {}; choose one with 'tr' (seconds)", run,
        seconds(headerSeconds), sidecar.file.filename().string(), seconds(*sidecar.trSeconds)));
  }
  return plausible(run, *sidecar.trSeconds, sidecar.file.filename().string());
}

}  // namespace study
