// A dense matrix whose rows and columns each count from a base of their own.
#ifndef TAVMAP_SIMO_MATRIX_H
#define TAVMAP_SIMO_MATRIX_H

#include <algorithm>
#include <cstddef>
#include <memory>

#include "simo/shifted_pointer.h"

namespace simo {

// Element m[r][c] for rowBase <= r < rowEnd and colBase <= c < colEnd. Row-major in one block: row
// r + 1 starts nCols elements after row r. Owns its storage; copies are deep. Nothing checks an
// index or a shape. A matrix without elements allocates nothing and has rows == nullptr.
// Construction throws std::bad_alloc when memory is exhausted.
template <class T>
struct Matrix {
  int nRows;
  int nCols;
  int rowBase;
  int colBase;
  int rowEnd;  // one past the last row
  int colEnd;  // one past the last column
  T** rows;    // shifted: rows[rowBase][colBase] is the first element
  int ownsData;

  // Elements stay uninitialised.
  Matrix(int rowCount, int colCount, int firstRow, int firstCol);
  Matrix(int rowCount, int colCount, int firstRow, int firstCol, const T& fill);
  Matrix(const Matrix& other);
  Matrix& operator=(const Matrix&) = delete;
  ~Matrix();

  // Copies the block of this matrix's shape that starts at src[srcRow][srcCol]. Keeps own bases.
  Matrix& assign(const Matrix& src, int srcRow, int srcCol);
  void fill(const T& value) { std::fill_n(elements(), size(), value); }

  T* operator[](int r) { return rows[r]; }
  const T* operator[](int r) const { return rows[r]; }

  // The whole matrix as one run of size() elements.
  T* elements() { return block_.get(); }
  const T* elements() const { return block_.get(); }
  std::size_t size() const {
    return nRows < 1 || nCols < 1 ? 0 : static_cast<std::size_t>(nRows) * static_cast<std::size_t>(nCols);
  }

 private:
  std::unique_ptr<T*[]> rowTable_;
  std::unique_ptr<T[]> block_;
};

template <class T>
Matrix<T>::Matrix(int rowCount, int colCount, int firstRow, int firstCol)
    : nRows(rowCount),
      nCols(colCount),
      rowBase(firstRow),
      colBase(firstCol),
      rowEnd(firstRow + rowCount),
      colEnd(firstCol + colCount),
      rows(nullptr),
      ownsData(1) {
  if (size() == 0) return;
  rowTable_ = std::make_unique<T*[]>(static_cast<std::size_t>(nRows));
  block_.reset(new T[size()]);
  for (std::ptrdiff_t r = 0; r < nRows; ++r)
    rowTable_[static_cast<std::size_t>(r)] = detail::shiftBack(block_.get() + r * nCols, colBase);
  rows = detail::shiftBack(rowTable_.get(), rowBase);
}

template <class T>
Matrix<T>::Matrix(int rowCount, int colCount, int firstRow, int firstCol, const T& value)
    : Matrix(rowCount, colCount, firstRow, firstCol) {
  fill(value);
}

template <class T>
Matrix<T>::Matrix(const Matrix& other) : Matrix(other.nRows, other.nCols, other.rowBase, other.colBase) {
  std::copy_n(other.elements(), size(), elements());
}

// Storage that is not owned belongs to whoever cleared the flag.
template <class T>
Matrix<T>::~Matrix() {
  if (ownsData != 0) return;
  (void)block_.release();
  (void)rowTable_.release();
}

template <class T>
Matrix<T>& Matrix<T>::assign(const Matrix& src, int srcRow, int srcCol) {
  for (int i = 0; i < nRows; ++i)
    for (int j = 0; j < nCols; ++j) rows[rowBase + i][colBase + j] = src.rows[srcRow + i][srcCol + j];
  return *this;
}

}  // namespace simo

#endif
