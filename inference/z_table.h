// Z of correlations by table.
#ifndef TAVMAP_INFERENCE_Z_TABLE_H
#define TAVMAP_INFERENCE_Z_TABLE_H

#include <cstdint>
#include <vector>

namespace inference {

// For a correlation r with rest w = 1 - r r, Z = r G(w), G being smooth: straight lines between 512 values of
// G per octave of w give Z within 1e-6 of itself. Below w = 2^-24 G stays what it is there.
class ZTable {
 public:
  static constexpr float kLeast = 0x1p-24F;
  static constexpr std::int32_t kLeastBits = (127 - 24) << 23;  // as kLeast is stored
  static constexpr int kShift = 23 - 9;
  static constexpr float kPart = 1.0F / (1 << kShift);

  explicit ZTable(int freedom);
  [[nodiscard]] const std::vector<float>& values() const { return values_; }

 private:
  std::vector<float> values_;
};

}  // namespace inference

#endif
