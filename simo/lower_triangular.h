// Lower-triangular arrays with row and column bases: the store, and the matrix on top of it.
#ifndef TAVMAP_SIMO_LOWER_TRIANGULAR_H
#define TAVMAP_SIMO_LOWER_TRIANGULAR_H

#include <cstddef>
#include <memory>

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
  ~LTData();

  // All elements as one run of size() elements.
  T* elements() { return n < 1 ? nullptr : rows[rowBase] + colBase; }
  const T* elements() const { return n < 1 ? nullptr : rows[rowBase] + colBase; }
  std::size_t size() const {
    return n < 1 ? 0 : static_cast<std::size_t>(n) * (static_cast<std::size_t>(n) + 1) / 2;
  }

 private:
  template <class Construct>
  void allocate(Construct construct);
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

// Lays the rows out in one block, whose elements `construct(block)` makes.
template <class T>
template <class Construct>
void LTData<T>::allocate(Construct construct) {
  if (n < 1) return;
  auto pointers = std::make_unique<T*[]>(static_cast<std::size_t>(n));
  std::allocator<T> memory;
  T* const block = memory.allocate(size());
  try {
    construct(block);
  } catch (...) {
    memory.deallocate(block, size());
    throw;
  }
  for (std::ptrdiff_t k = 0; k < n; ++k)
    pointers[static_cast<std::size_t>(k)] = detail::shiftBack(block + k * (k + 1) / 2, colBase);
  rows = detail::shiftBack(pointers.release(), rowBase);
}

template <class T>
LTData<T>::LTData(int rowCount, int firstRow, int firstCol, const T& fill)
    : n(rowCount), rowBase(firstRow), colBase(firstCol), rowEnd(firstRow + rowCount), rows(nullptr) {
  allocate([&](T* block) { std::uninitialized_fill_n(block, size(), fill); });
}

template <class T>
LTData<T>::LTData(const LTData& other)
    : n(other.n), rowBase(other.rowBase), colBase(other.colBase), rowEnd(other.rowEnd), rows(nullptr) {
  allocate([&](T* block) { std::uninitialized_copy_n(other.elements(), size(), block); });
}

template <class T>
LTData<T>::~LTData() {
  if (n < 1) return;
  T* const block = elements();
  std::destroy_n(block, size());
  std::allocator<T>().deallocate(block, size());
  delete[] detail::firstElement(rows, rowBase);
}

}  // namespace simo

#endif
