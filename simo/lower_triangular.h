// Lower-triangular arrays with row and column bases: the store, and the matrix on top of it.
#ifndef TAVMAP_SIMO_LOWER_TRIANGULAR_H
#define TAVMAP_SIMO_LOWER_TRIANGULAR_H

#include <cstddef>
#include <memory>
#include <vector>

#include "simo/shifted_pointer.h"

namespace simo {

// Row r holds the r - rowBase + 1 elements at columns colBase ... colBase + (r - rowBase), so that
// equal bases give the triangle i >= j of a square array. All n(n+1)/2 elements lie in one block,
// row after row. Owns its storage; copies are deep. With n < 1 it allocates nothing. Nothing checks
// an index. Construction throws std::bad_alloc when memory is exhausted.
template <class T>
struct LTData {
  int n;
  int rowBase;
  int colBase;
  int rowEnd;  // one past the last row
  T** rows;    // shifted: rows[rowBase][colBase] is the first element

  // Every element is a copy of `fill`.
  LTData(int rowCount, int firstRow, int firstCol, const T& fill);
  LTData(const LTData& other);
  LTData& operator=(const LTData&) = delete;

  // All elements as one run of size() elements.
  T* elements() { return block_.data(); }
  const T* elements() const { return block_.data(); }
  std::size_t size() const { return block_.size(); }

 private:
  static std::size_t elementCount(int rowCount) {
    return rowCount < 1 ? 0
                        : static_cast<std::size_t>(rowCount) * (static_cast<std::size_t>(rowCount) + 1) / 2;
  }
  void layOutRows();

  std::unique_ptr<T*[]> rowTable_;
  std::vector<T> block_;
};

// A lower-triangular matrix: a shape, and a store of the same shape.
template <class T>
struct LTMatrix {
  int n;
  int rowBase;
  int colBase;
  int rowEnd;
  LTData<T> store;

  LTMatrix(int rowCount, int firstRow, int firstCol, const T& fill)
      : n(rowCount),
        rowBase(firstRow),
        colBase(firstCol),
        rowEnd(firstRow + rowCount),
        store(rowCount, firstRow, firstCol, fill) {}
  LTMatrix(const LTMatrix&) = default;
  LTMatrix& operator=(const LTMatrix&) = delete;

  T* operator[](int r) { return store.rows[r]; }
  const T* operator[](int r) const { return store.rows[r]; }
};

template <class T>
LTData<T>::LTData(int rowCount, int firstRow, int firstCol, const T& fill)
    : n(rowCount),
      rowBase(firstRow),
      colBase(firstCol),
      rowEnd(firstRow + rowCount),
      rows(nullptr),
      block_(elementCount(rowCount), fill) {
  layOutRows();
}

template <class T>
LTData<T>::LTData(const LTData& other)
    : n(other.n),
      rowBase(other.rowBase),
      colBase(other.colBase),
      rowEnd(other.rowEnd),
      rows(nullptr),
      block_(other.block_) {
  layOutRows();
}

template <class T>
void LTData<T>::layOutRows() {
  if (n < 1) return;
  rowTable_ = std::make_unique<T*[]>(static_cast<std::size_t>(n));
  for (std::ptrdiff_t k = 0; k < n; ++k)
    rowTable_[static_cast<std::size_t>(k)] = detail::shiftBack(block_.data() + k * (k + 1) / 2, colBase);
  rows = detail::shiftBack(rowTable_.get(), rowBase);
}

}  // namespace simo

#endif
