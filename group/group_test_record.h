// The record of one test over participants (*_grouptest.json): everything about its result, as plain values.
#ifndef TAVMAP_GROUP_GROUP_TEST_RECORD_H
#define TAVMAP_GROUP_GROUP_TEST_RECORD_H

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "group/group_cells.h"
#include "group/group_model.h"
#include "group/test_design.h"

namespace study {

struct GroupRow {
  std::string participant, level;   // its group; empty without groups
  std::vector<double> design;       // one value per column
  std::vector<std::string> images;  // what it brought, relative to the output folder
  bool operator==(const GroupRow&) const = default;
};

// How many voxels of each sign, and of clusters how many, are found at the level of the test.
struct GroupCounts {
  std::size_t positive = 0, negative = 0;
  bool operator==(const GroupCounts&) const = default;
};

struct GroupValue {  // of one participant at a peak
  std::string participant;
  double value = 0;
  double tWithout = 0;  // t at the peak without this participant
  bool operator==(const GroupValue&) const = default;
};

// How the directions of participants' own maps (derivatives.md) stand at a place.
struct DirectionVotes {
  int referenceLeads = 0, voxelLeads = 0, notSupported = 0, notTested = 0;
  bool operator==(const DirectionVotes&) const = default;
};

struct GroupPeak {
  std::string by;              // "tfce", "maximum", "mass", or "none": the largest |t| of all, no finding
  std::array<int, 3> voxel{};  // indices from 0
  std::array<double, 3> mm{};
  std::size_t voxels = 0;  // of its cluster
  double volumeMm3 = 0;
  double effect = 0, t = 0, z = 0, pFwe = 1, pTfce = 1, pMass = 1, qFdr = 1;  // NaN: not asked for
  int participants = 0;                                                       // who have a value there
  DirectionVotes directions;       // of tests of dTAV without a difference
  std::vector<GroupValue> values;  // of the first peaks alone
  bool operator==(const GroupPeak&) const = default;
};

struct GroupImage {
  std::string what;  // "t", "pfwe", ...: as its file name says, see group_names.h
  std::string file;
  bool operator==(const GroupImage&) const = default;
};

struct GroupTestRecord {
  std::string key;  // says from which inputs and settings it was made
  std::string version;
  std::string test, question;                                      // name, and in words
  std::string task, session, reference, condition, sessions, map;  // of the cell; map: "dTAV"
  std::string within, contrast;                                    // as asked
  bool isTwoSided = true;  // else only values above 0 count: less than the own null values says nothing
  bool isZ = false;        // values are z against each voxel's own null values
  std::vector<std::string> columns;  // of the design
  std::vector<double> weights;       // of the contrast
  std::vector<GroupRow> rows;
  std::vector<std::string> leftOut;  // in words
  std::vector<int> blocks;           // per row; empty: none
  GroupInference inference;
  std::string exchange;      // "sign flips", "permutations"
  std::size_t shuffles = 0;  // done, the data as they are among them
  bool isExhaustive = false, isTailSmooth = false;
  int freedom = 0;
  std::size_t voxelsTested = 0, voxelsWithoutAll = 0;  // not tested since too few participants have a value
  double largestT = 0, smallestT = 0;
  double tAtFwe = 0, tAtQ = 0;                   // infinite: none; at .05
  GroupCounts byMaximum, byTfce, byFdr, byMass;  // voxels; of mass: clusters
  double symmetryP = 0;                          // NaN: not looked at
  double meanSkewness = 0;
  double spreadRatio = 0, spreadP = 0;  // of two groups; NaN: not looked at
  std::vector<GroupPeak> peaks;
  std::vector<std::string> warnings;
  std::vector<GroupImage> images;
  std::string clusterTable, valueTable;
  std::map<std::string, std::uintmax_t> files;  // size of every file of the result, by name

  // Whether peaks have the participants' own directions: of differences of directions, of one condition each.
  [[nodiscard]] bool hasVotes() const { return !isZ && within.empty(); }
  // The file of an image, empty where the test has none.
  [[nodiscard]] std::string image(const std::string& what) const;
};

// Files are written and read by one description; numbers that are not finite are null there and NaN here.
[[nodiscard]] std::string groupRecordText(const GroupTestRecord& record);
// Throws formats::FileError.
[[nodiscard]] GroupTestRecord readGroupRecord(const std::filesystem::path& file);

}  // namespace study

#endif
