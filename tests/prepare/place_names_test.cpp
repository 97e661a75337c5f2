#include "prepare/place_names.h"

#include <gtest/gtest.h>

#include "formats/nifti.h"
#include "formats/nifti_writer.h"
#include "tests/support/scratch.h"

namespace study {
namespace {

class Places : public ::testing::Test {
 protected:
  Places() {
    grid_.size = {3, 1, 1};
    grid_.affine = formats::Affine{{2, 0, 0, -10, 0, 2, 0, 0, 0, 0, 2, 5, 0, 0, 0, 1}};
  }
  ReferenceRequest labels(const std::string& file, const Grid& grid, std::vector<std::int32_t> values) {
    formats::LabelImage image;
    image.header.size = grid.size;
    image.header.affine = grid.affine;
    image.header.sformCode = 1;
    image.header.dataType = formats::DataType::kUint8;
    image.labels = std::move(values);
    formats::writeLabelImage(scratch_.file(file), image);
    ReferenceRequest reference;
    reference.image = scratch_.file(file);
    return reference;
  }
  Scratch scratch_;
  Grid grid_;
  Request request_;
};

TEST_F(Places, AreNamedAsTheTableBesideTheImageSays) {
  request_.references = {labels("a.nii.gz", grid_, {0, 7, 3})};
  scratch_.write("a.tsv", "index\tname\n7\tV1\n");
  const auto names = readPlaceNames(request_, grid_);
  ASSERT_NE(names, nullptr);
  EXPECT_EQ(names->nameAt(0), "none");
  EXPECT_EQ(names->nameAt(1), "V1");
  EXPECT_EQ(names->nameAt(2), "label3");
  EXPECT_EQ(names->labelAt(1), 7);
}

TEST_F(Places, ComeFromTheFirstLabelImageOnTheGrid) {
  Grid shifted = grid_;
  shifted.affine.at(0, 3) += 1;
  request_.references = {labels("shifted.nii.gz", shifted, {4, 4, 4}), labels("b.nii.gz", grid_, {5, 5, 5}),
                         labels("c.nii.gz", grid_, {6, 6, 6})};
  EXPECT_EQ(readPlaceNames(request_, grid_)->nameAt(0), "label5");
  EXPECT_FALSE(readPlaceNames(request_, grid_)->isResampled());
}

TEST_F(Places, AreThoseAtTheVoxelsCentresOfAnImageWithAnotherGrid) {
  Grid fine;
  fine.size = {6, 1, 1};
  fine.affine = formats::Affine{{1, 0, 0, -10, 0, 2, 0, 0, 0, 0, 2, 5, 0, 0, 0, 1}};
  request_.references = {labels("fine.nii.gz", fine, {1, 2, 3, 4, 5, 6})};
  const auto names = readPlaceNames(request_, grid_);
  ASSERT_NE(names, nullptr);
  EXPECT_TRUE(names->isResampled());
  EXPECT_EQ(names->nameAt(0) + names->nameAt(1) + names->nameAt(2), "label1label3label5");
}

TEST_F(Places, HaveNoNamesWithoutALabelImage) {
  ReferenceRequest mask = labels("mask.nii.gz", grid_, {1, 1, 1});
  mask.kind = ReferenceKind::kMask;
  request_.references = {mask};
  EXPECT_EQ(readPlaceNames(request_, grid_), nullptr);
}

TEST_F(Places, KeysFollowLabelsAndNamesAlone) {
  request_.references = {labels("a.nii.gz", grid_, {0, 7, 3})};
  const std::string key = readPlaceNames(request_, grid_)->key();
  request_.references = {labels("copy.nii.gz", grid_, {0, 7, 3})};
  EXPECT_EQ(readPlaceNames(request_, grid_)->key(), key);
  scratch_.write("copy.tsv", "index\tname\n7\tV1\n");
  EXPECT_NE(readPlaceNames(request_, grid_)->key(), key);
  request_.references = {labels("other.nii.gz", grid_, {0, 7, 4})};
  EXPECT_NE(readPlaceNames(request_, grid_)->key(), key);
}

}  // namespace
}  // namespace study
