// The label image of a reference, read with the names of its labels.
#ifndef TAVMAP_PREPARE_LABEL_FILES_H
#define TAVMAP_PREPARE_LABEL_FILES_H

#include <string>

#include "prepare/label_volume.h"
#include "request/request.h"

namespace study {

// Of a reference of kind kLabels: its label image, or the most probable labels of its probability atlas,
// where label k is volume k, counted from 1, and bears the k-th name of the table in the order of its
// indices. `where` begins messages. Throws formats::FileError, and InputError for several volumes without
// 'probability', for a table with more or fewer names than the atlas has volumes, and for all labels of an
// image most of whose values have no name.
[[nodiscard]] LabelVolume readLabels(const ReferenceRequest& reference, const std::string& where);

// Of kind kMask: 1 where the image is not 0.
[[nodiscard]] LabelVolume readMask(const ReferenceRequest& reference);

}  // namespace study

#endif
