// A plain three-dimensional array, 0-based: raw maps and the threshold search use it.
#ifndef TAVMAP_SIMO_ARRAY3D_H
#define TAVMAP_SIMO_ARRAY3D_H

#include <cstddef>
#include <memory>

// Element a[i][j][k], k fastest, all elements in one block: a[0][0] walks them as one run of
// size() elements. Owns its storage; is not copied. With dim0 or dim1 0 there are no rows and
// planes[0] must not be used. Nothing checks an index. Construction throws std::bad_alloc when
// memory is exhausted. In the global namespace, where its users expect it.
template <class T>
struct Array3D {
  unsigned dim0;
  unsigned dim1;
  unsigned dim2;
  T*** planes;
  unsigned char ownsData;

  // Elements stay uninitialised.
  Array3D(unsigned extent0, unsigned extent1, unsigned extent2);
  Array3D(const Array3D&) = delete;
  Array3D& operator=(const Array3D&) = delete;
  ~Array3D();

  T** operator[](std::size_t i) { return planes[i]; }
  const T* const* operator[](std::size_t i) const { return planes[i]; }

  T* elements() { return block_.get(); }
  const T* elements() const { return block_.get(); }
  std::size_t size() const { return rowCount() * dim2; }

 private:
  std::size_t rowCount() const { return std::size_t{dim0} * dim1; }

  std::unique_ptr<T**[]> planeTable_;
  std::unique_ptr<T*[]> rowTable_;
  std::unique_ptr<T[]> block_;
};

template <class T>
Array3D<T>::Array3D(unsigned extent0, unsigned extent1, unsigned extent2)
    : dim0(extent0), dim1(extent1), dim2(extent2), planes(nullptr), ownsData(1) {
  if (rowCount() == 0) return;
  planeTable_ = std::make_unique<T**[]>(dim0);
  rowTable_ = std::make_unique<T*[]>(rowCount());
  block_.reset(new T[size()]);
  for (std::size_t row = 0; row < rowCount(); ++row) rowTable_[row] = block_.get() + row * dim2;
  for (std::size_t i = 0; i < dim0; ++i) planeTable_[i] = rowTable_.get() + i * dim1;
  planes = planeTable_.get();
}

// A block that is not owned belongs to whoever cleared the flag; the pointer tables never do.
template <class T>
Array3D<T>::~Array3D() {
  if (ownsData == 0) (void)block_.release();
}

#endif
