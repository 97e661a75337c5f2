#include "tav/ini_file.h"

#include <array>
#include <cstdint>
#include <limits>
#include <sstream>
#include <vector>

#include "tav/map_kinds.h"

namespace tav {
namespace {

constexpr int kMaxLineLength = 255;

template <typename T>
bool convert(const std::string& token, T& value) {
  std::istringstream stream(token);
  stream >> value;  // a valid beginning is enough: "12abc" is 12
  return !stream.fail();
}

// Reads lines and dispatches on their keys. The two holders live as long as the file: a key whose
// value is missing sees the value that the holder still has from an earlier line. That is
// deliberate; clearing the holder would accept and reject different files.
class IniReader {
 public:
  IniReader(std::istream& file, TAV_Pars& pars, std::ostream& err) : file_(file), pars_(pars), err_(err) {}

  bool readAll() {
    while (!file_.eof()) {
      if (!readLine() || !handleLine()) return false;
    }
    return true;
  }

 private:
  bool readLine();
  bool handleLine();
  bool readMapTypes();
  bool readQThresholds();
  bool appendQThreshold(std::vector<float>& qs);
  bool readScalar();

  // Reads and checks the value of the current key into `value`.
  template <typename T, typename IsValid>
  bool scalar(T& value, IsValid isValid, const char* suffix);
  bool flag(bool& field);

  std::istream& file_;
  TAV_Pars& pars_;
  std::ostream& err_;
  std::istringstream tokens_;  // of the current line
  std::string key_;
  std::string value_;
};

bool IniReader::readLine() {
  std::array<char, kMaxLineLength + 1> line;
  file_.getline(line.data(), line.size());
  const auto length = static_cast<std::size_t>(file_.gcount());
  if (file_.bad() || (file_.fail() && !file_.eof())) {
    err_ << (file_.bad() ? "Could not read TAVPlugin.ini"
                         : "A line in TAVPlugin.ini is longer than 255 characters");
    return false;
  }
  // The count includes the line end that getline() took, except at the end of the file.
  tokens_.clear();
  tokens_.str(std::string(line.data(), file_.eof() ? length : length - 1));
  return true;
}

bool IniReader::handleLine() {
  key_.clear();
  tokens_ >> key_;
  if (key_.empty() || key_.starts_with("//")) return true;
  if (key_ == MAPTYPES_INI_STR) return readMapTypes();
  if (key_ == QS_INI_STR) return readQThresholds();
  return readScalar();
}

bool IniReader::readMapTypes() {
  std::set<MapType> types;
  // The key's own holder is not cleared before the first read, deliberately: a line with the key
  // alone fails with the key as unknown type.
  tokens_ >> key_;
  while (!key_.empty()) {
    if (!addMapType(key_, types, err_)) return false;
    key_.clear();
    tokens_ >> key_;
  }
  if (types.empty()) {
    err_ << "No valid map-types for '" << MAPTYPES_INI_STR << "'  found in TAVPlugin.ini";
    return false;
  }
  pars_.mapTypes = types;
  return true;
}

bool IniReader::readQThresholds() {
  std::vector<float> qs;
  tokens_ >> value_;
  while (!value_.empty()) {
    if (!appendQThreshold(qs)) return false;
    value_.clear();
    tokens_ >> value_;
  }
  if (qs.empty()) {
    err_ << "No valid q-values for '" << QS_INI_STR << "' found in TAVPlugin.ini";
    return false;
  }
  pars_.qThresholds = qs;
  return true;
}

bool IniReader::appendQThreshold(std::vector<float>& qs) {
  float q = 0.0F;
  if (!convert(value_, q)) {
    err_ << "Invalid entry for '" << QS_INI_STR << "' in TAVPlugin.ini: '" << value_ << "'";
    return false;
  }
  if (q <= 0.0F || q >= 1.0F) {
    err_ << "Invalid q-value for '" << QS_INI_STR << "' in TAVPlugin.ini: " << q;
    return false;
  }
  qs.push_back(q);
  return true;
}

template <typename T, typename IsValid>
bool IniReader::scalar(T& value, IsValid isValid, const char* suffix) {
  tokens_ >> value_;
  if (value_.empty()) {
    err_ << "No valid entry for '" << key_ << "' found in TAVPlugin.ini";
    return false;
  }
  T candidate{};
  if (!convert(value_, candidate)) {
    const char* const quote = key_ == CV_INI_STR ? "'" : "";  // this key alone quotes its token
    err_ << "Invalid entry for '" << key_ << "' in TAVPlugin.ini: " << quote << value_ << quote;
    return false;
  }
  if (!isValid(candidate)) {
    err_ << "Invalid value for '" << key_ << "' in TAVPlugin.ini: " << candidate << suffix;
    return false;
  }
  value = candidate;
  return true;
}

bool IniReader::flag(bool& field) {
  std::int32_t value = 0;
  if (!scalar(
          value, [](std::int32_t v) { return v == 0 || v == 1; }, " (must be 0 or 1)"))
    return false;
  field = value == 1;
  return true;
}

auto inRange(std::int32_t first, std::int32_t last) {
  return [=](std::int32_t v) { return v >= first && v <= last; };
}

bool IniReader::readScalar() {
  if (key_ == CV_INI_STR) return scalar(pars_.cvConstant, inRange(1, 2), " (must be 1 or 2)");
  if (key_ == ORDER_INI_STR) return scalar(pars_.arOrder, inRange(1, 20), " (valid range 1 - 20)");
  if (key_ == INCL_THRES_INI_STR) {
    std::int32_t value = 0;
    if (!scalar(value, inRange(0, std::numeric_limits<std::int32_t>::max()), " (must be >= 0)")) return false;
    pars_.firstTpInclThres = static_cast<std::uint16_t>(value);  // modulo 65536, by the field's width
    return true;
  }
  if (key_ == SHOW_PROG_INI_STR) return flag(pars_.showVerboseProgress);
  if (key_ == N_SURR_REPS_INI_STR)
    return scalar(pars_.nSurrogateSims, inRange(10, 10000), " (valid range 10 - 10000)");
  if (key_ == N_DISC_SIMTC_INI_STR)
    return scalar(pars_.nDiscardedSimTps, inRange(10, 1000), " (valid range 10 - 1000)");
  if (key_ == INST_LTHRES_INI_STR) {
    return scalar(
        pars_.instLowerThres, [](float v) { return v >= 0.0F; },
        " (must be >0, high values not recommended)");
  }
  if (key_ == RCMAP_HTHRES_INI_STR) {
    return scalar(
        pars_.rcUpperThres, [](float v) { return v >= 0.0F && v < 1.0F; }, " (valid range [0, 1) )");
  }
  if (key_ == MAP_SCALE_FACTOR_INI_STR) {
    // Compared in double, deliberately: the float nearest to 0.01 lies below it and is rejected.
    const auto isValid = [](float v) {
      return static_cast<double>(v) >= 0.01 && static_cast<double>(v) <= 1000.0;
    };
    return scalar(pars_.mapScaleFactor, isValid, " (must be bewteen 0.01 and 1000, inclusive)");
  }
  if (key_ == SEPARATE_SRC_TRG_VTCS_INI_STR) return flag(pars_.separateSrcTrgVtcs);
  err_ << "Unknown entry in TAVPlugin.ini: '" << key_ << "'";
  return false;
}

}  // namespace

bool loadINIFile(std::istream& file, TAV_Pars& pars, std::ostream& err) {
  return IniReader(file, pars, err).readAll();
}

bool addMapType(const std::string& keyword, std::set<MapType>& types, std::ostream& err) {
  const std::optional<MapType> type = findMapType(keyword);
  if (!type) {
    err << "Unknown type-string for '" << MAPTYPES_INI_STR << "' in TAVPlugin.ini: '" << keyword << "'";
    return false;
  }
  types.insert(*type);
  return true;
}

}  // namespace tav
