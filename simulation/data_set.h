// A whole simulated data set in one folder, ready for the stand-in host and for requests:
//
//   anatomy.nii.gz  mask.nii.gz  dseg.nii.gz  dseg.tsv      one grid for all
//   run-N_bold.nii.gz  run-N.vtc  run-N.vtc.json            the VTC within the mask
//   run-N_events.tsv  run-N.prt                             the task in seconds, and in volumes
//   truth.json                                              what was planted
//   answers.txt  answers-protocol.txt  maps/                scripted sessions and their results
#ifndef TAVMAP_SIMULATION_DATA_SET_H
#define TAVMAP_SIMULATION_DATA_SET_H

#include <cstdint>
#include <string>

#include "simulation/head.h"

namespace simulation {

struct DataSetOptions {
  std::uint64_t seed = 1;
  int runs = 2;
  int volumes = 160;
  double trMs = 2000;
  double strength = 1;  // of all influences; 0: none
  HeadOptions head;
};

// Empty when the options can be simulated, else what is wrong, in words.
[[nodiscard]] std::string problemWith(const DataSetOptions& options);

// Writes the files, replacing those of an earlier data set. Creates the folder. The same options
// give the same bytes. Throws FileError. Precondition: problemWith(options) is empty.
void writeDataSet(const std::string& folder, const DataSetOptions& options);

// Creates a folder and those above it. Throws FileError.
void makeFolder(const std::string& folder);

}  // namespace simulation

#endif
