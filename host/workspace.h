// What is open in the host: one current anatomy and, attached to it, a linked VTC, a list of VOIs,
// a protocol and a map set. Any of them may be missing.
//
// VOIs from a label image and VTCs imported from a NIfTI series must lie on the anatomy's grid: their
// coordinates are the anatomy's voxels.
//
// Arrays that plug-ins get pointers to keep their place until they are replaced. Failures of
// files are formats::FileError; the workspace is then as it was before.
#ifndef TAVMAP_HOST_WORKSPACE_H
#define TAVMAP_HOST_WORKSPACE_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "formats/affine.h"
#include "formats/image.h"
#include "host/lent_array.h"
#include "host/nr_map_set.h"
#include "hostapi/zq_records.h"

namespace host {

struct Anatomy {
  std::string path;
  formats::ImageHeader header;
};

struct LinkedVtc {
  std::string path;
  VTC_Header header;
};

struct Voi {
  std::string name;
  LentArray<std::int32_t> coordinates;  // x, y, z of every voxel
  [[nodiscard]] std::int32_t nrOfVoxels() const { return static_cast<std::int32_t>(coordinates.size() / 3); }
};

struct VoiList {
  std::string path;
  bool talairach = false;  // coordinates are Talairach millimetres, else anatomical voxels
  std::vector<Voi> vois;
};

struct ProtocolCondition {
  std::string name;
  LentArray<std::int32_t> starts, ends;  // inclusive; volumes count from 1
};

struct Protocol {
  std::string path, experimentName;
  std::int32_t timeResolution = kProtocolInMilliseconds;
  std::vector<ProtocolCondition> conditions;
};

class Workspace {
 public:
  [[nodiscard]] const std::optional<Anatomy>& anatomy() const { return anatomy_; }
  void openAnatomy(const std::string& path);

  // The linked VTC; its protocol name, parameters and so on are the host's to change.
  std::optional<LinkedVtc>& vtc() { return vtc_; }
  [[nodiscard]] const std::optional<LinkedVtc>& vtc() const { return vtc_; }
  void linkVtc(const std::string& path);

  // Further VTCs, for time courses over several runs.
  std::vector<LinkedVtc>& furtherVtcs() { return furtherVtcs_; }
  void addFurtherVtc(const std::string& path);

  // Null when no list is loaded. `tablePath` names the label table of an image; empty: the table
  // beside it, or none. Returns one line for each thing about the labels that a person should know.
  VoiList* vois() { return vois_.get(); }
  const VoiList* vois() const { return vois_.get(); }
  std::vector<std::string> loadVois(const std::string& path, const std::string& tablePath);
  void saveVois(const std::string& path) const;

  // Null when there is none.
  Protocol* protocol() { return protocol_.get(); }
  void setProtocol(Protocol protocol) { protocol_ = std::make_unique<Protocol>(std::move(protocol)); }
  void clearProtocol() { protocol_.reset(); }
  void loadProtocol(const std::string& path);
  void saveProtocol(const std::string& path) const;

  // Null when there is none.
  MapSet* maps() { return maps_.get(); }
  MapSet& createMaps(const Box& box, int nrOfMaps, int nrOfThresholds);
  void deleteMaps() { maps_.reset(); }
  void loadMaps(const std::string& path);
  void saveMaps(const std::string& path);

  // Every map file written, in order.
  [[nodiscard]] const std::vector<std::string>& savedMaps() const { return savedMaps_; }

 private:
  std::optional<Anatomy> anatomy_;
  std::optional<LinkedVtc> vtc_;
  std::vector<LinkedVtc> furtherVtcs_;
  std::unique_ptr<VoiList> vois_;
  std::unique_ptr<Protocol> protocol_;
  std::unique_ptr<MapSet> maps_;
  std::vector<std::string> savedMaps_;
};

// The time course of one cell, header.nrOfVolumes values, appended to `values`; cells are counted
// x fastest, then y, then z. The cell must exist.
void appendTimeCourse(const LinkedVtc& vtc, std::size_t cell, std::vector<float>& values);

}  // namespace host

#endif
