// A one-dimensional array that counts from a base of its own.
#ifndef TAVMAP_SIMO_VECTOR_H
#define TAVMAP_SIMO_VECTOR_H

#include <cstddef>
#include <memory>

#include "simo/shifted_pointer.h"

namespace simo {

// Element v[i] for base <= i < end. Elements may be whole matrices, each with storage of its own.
// Owns its storage; is not copied. With n < 1 it allocates nothing. Nothing checks an index.
// Construction throws std::bad_alloc when memory is exhausted.
template <class T>
struct Vector {
  int n;
  int base;
  int end;  // one past the last index
  T* data;  // shifted: data[base] is the first element

  // Every element is a copy of `fill`.
  Vector(int count, int firstIndex, const T& fill);
  Vector(const Vector&) = delete;
  Vector& operator=(const Vector&) = delete;
  ~Vector();

  T& operator[](int i) { return data[i]; }
  const T& operator[](int i) const { return data[i]; }

 private:
  std::size_t size() const { return n < 1 ? 0 : static_cast<std::size_t>(n); }

  T* block_ = nullptr;
};

template <class T>
Vector<T>::Vector(int count, int firstIndex, const T& fill)
    : n(count), base(firstIndex), end(firstIndex + count), data(nullptr) {
  if (size() == 0) return;
  std::allocator<T> memory;
  block_ = memory.allocate(size());
  try {
    std::uninitialized_fill_n(block_, size(), fill);
  } catch (...) {
    memory.deallocate(block_, size());
    throw;
  }
  data = detail::shiftBack(block_, base);
}

template <class T>
Vector<T>::~Vector() {
  if (size() == 0) return;
  for (T* element = block_; element != block_ + n; ++element) std::destroy_at(element);
  std::allocator<T>().deallocate(block_, size());
}

}  // namespace simo

#endif
