#include "host/workspace.h"

#include <fmt/core.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "formats/file_error.h"
#include "formats/image.h"
#include "formats/nifti.h"
#include "formats/protocol.h"
#include "formats/voi_list.h"
#include "formats/vtc_export.h"
#include "host/fields.h"
#include "host/map_files.h"

namespace host {
namespace {

std::string absolutePath(const std::string& path) {
  return std::filesystem::absolute(path).lexically_normal().string();
}

bool endsWith(const std::string& text, const std::string& ending) {
  return text.size() >= ending.size() &&
         text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

LinkedVtc openVtc(const std::string& path) {
  if (endsWith(path, ".nii") || endsWith(path, ".nii.gz"))
    throw formats::FileError(path, "this is a NIfTI series, a VTC is needed",
                             fmt::format("Make one with \"tavmap convert {} NAME.vtc\"", path));
  return {absolutePath(path), formats::readVtcFileHeader(path)};
}

bool isJson(const std::string& path) {
  return endsWith(path, ".json");
}

// An imported series keeps the grid of its image, so its cells must be the anatomy's voxels: VOIs
// are given in them. A VTC without a sidecar lies in the anatomical space of old.
void requireCellsOfAnatomy(const LinkedVtc& vtc, const Anatomy& anatomy) {
  const formats::VtcPlace place = formats::placeOf(vtc.path, vtc.header);
  if (!place.fromSidecar) return;
  const Box box = boxOf(vtc.header);
  formats::ImageHeader grid;
  grid.size = {box.cells(0), box.cells(1), box.cells(2)};
  grid.affine = place.affine;
  formats::requireSameGrid(anatomy.header, anatomy.path, grid, vtc.path);
}

Voi lentVoi(const formats::Voi& voi) {
  Voi lent{voi.name, LentArray<std::int32_t>(3 * voi.voxels.size())};
  std::int32_t* next = lent.coordinates.data();
  for (const formats::VoxelIndex& voxel : voi.voxels)
    for (std::int32_t coordinate : voxel) *next++ = coordinate;
  return lent;
}

formats::Voi storedVoi(const Voi& voi) {
  formats::Voi stored{voi.name, {}};
  for (const std::int32_t* at = voi.coordinates.begin(); at != voi.coordinates.end(); at += 3)
    stored.voxels.push_back({at[0], at[1], at[2]});
  return stored;
}

std::vector<std::string> remarksOn(const formats::LabelVois& vois, const std::string& path) {
  std::vector<std::string> remarks;
  for (std::int32_t label : vois.unnamed)
    remarks.push_back(fmt::format("WARNING: label {} of {} has no name in its table", label, path));
  for (const formats::Label& label : vois.absent)
    remarks.push_back(
        fmt::format("WARNING: label {} ({}) has no voxel in {}", label.index, label.name, path));
  return remarks;
}

ProtocolCondition lentCondition(const formats::ProtocolCondition& condition) {
  const std::size_t count = condition.intervals.size();
  ProtocolCondition lent{condition.name, LentArray<std::int32_t>(count), LentArray<std::int32_t>(count)};
  for (std::size_t i = 0; i < count; ++i) {
    lent.starts.data()[i] = condition.intervals[i].start;
    lent.ends.data()[i] = condition.intervals[i].end;
  }
  return lent;
}

formats::ProtocolCondition storedCondition(const ProtocolCondition& condition) {
  formats::ProtocolCondition stored{condition.name, {}};
  for (std::size_t i = 0; i < condition.starts.size(); ++i)
    stored.intervals.push_back({condition.starts.data()[i], condition.ends.data()[i]});
  return stored;
}

}  // namespace

void Workspace::openAnatomy(const std::string& path) {
  anatomy_ = Anatomy{absolutePath(path), formats::readImageHeader(path)};
}

void Workspace::linkVtc(const std::string& path) {
  LinkedVtc vtc = openVtc(path);
  if (anatomy_) requireCellsOfAnatomy(vtc, *anatomy_);
  vtc_ = std::move(vtc);
}

void Workspace::addFurtherVtc(const std::string& path) {
  furtherVtcs_.push_back(openVtc(path));
}

std::vector<std::string> Workspace::loadVois(const std::string& path, const std::string& tablePath) {
  if (anatomy_ && !isJson(path))
    formats::requireSameGrid(anatomy_->header, anatomy_->path, formats::readImageHeader(path), path);
  const formats::LabelVois read = formats::loadVois(path, tablePath);
  auto list = std::make_unique<VoiList>();
  list->path = absolutePath(path);
  list->talairach = read.list.talairach;
  for (const formats::Voi& voi : read.list.vois) list->vois.push_back(lentVoi(voi));
  vois_ = std::move(list);
  return remarksOn(read, path);
}

void Workspace::saveVois(const std::string& path) const {
  formats::VoiList list{vois_->talairach, {}};
  for (const Voi& voi : vois_->vois) list.vois.push_back(storedVoi(voi));
  formats::writeVoiJson(path, list);
}

void Workspace::loadProtocol(const std::string& path) {
  const formats::Protocol read = formats::readProtocol(path, vtc_ ? vtc_->header.tr : 0);
  Protocol protocol;
  protocol.path = absolutePath(path);
  protocol.experimentName = std::filesystem::path(path).stem().string();
  protocol.timeResolution = static_cast<std::int32_t>(read.unit);
  for (const formats::ProtocolCondition& condition : read.conditions)
    protocol.conditions.push_back(lentCondition(condition));
  if (vtc_) fillField(protocol.path, vtc_->header.protocolName), vtc_->header.nrOfLinkedProtocols = 1;
  setProtocol(std::move(protocol));
}

void Workspace::saveProtocol(const std::string& path) const {
  formats::Protocol protocol{static_cast<formats::TimeUnit>(protocol_->timeResolution), {}};
  for (const ProtocolCondition& condition : protocol_->conditions)
    protocol.conditions.push_back(storedCondition(condition));
  formats::writeProtocol(path, protocol);
}

MapSet& Workspace::createMaps(const Box& box, int nrOfMaps, int nrOfThresholds) {
  maps_ = std::make_unique<MapSet>(box, nrOfMaps, nrOfThresholds);
  return *maps_;
}

void Workspace::loadMaps(const std::string& path) {
  maps_ = readMaps(path);
}

void Workspace::saveMaps(const std::string& path) {
  writeMaps(path, *maps_, placeOf(maps_->box(), *this));
  savedMaps_.push_back(absolutePath(path));
}

void appendTimeCourse(const LinkedVtc& vtc, std::size_t cell, std::vector<float>& values) {
  const bool isFloat = vtc.header.dataType == kVtcFloatData;
  const auto volumes = static_cast<std::size_t>(vtc.header.nrOfVolumes);
  std::vector<char> bytes(volumes * (isFloat ? sizeof(float) : sizeof(std::uint16_t)));
  std::ifstream file(vtc.path, std::ios::binary);
  file.seekg(vtc.header.dataOffset + static_cast<std::streamoff>(cell * bytes.size()));
  if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
    throw formats::FileError(vtc.path, "a time course could not be read",
                             "Check that the file is still there");
  for (std::size_t i = 0; i < volumes; ++i) {
    float value = 0;
    std::uint16_t whole = 0;
    if (isFloat) std::memcpy(&value, &bytes[i * sizeof value], sizeof value);
    if (!isFloat) std::memcpy(&whole, &bytes[i * sizeof whole], sizeof whole);
    values.push_back(isFloat ? value : static_cast<float>(whole));
  }
}

}  // namespace host
