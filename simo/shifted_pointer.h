// Pointers whose index 0 may lie outside their block, the means by which containers have a base.
#ifndef TAVMAP_SIMO_SHIFTED_POINTER_H
#define TAVMAP_SIMO_SHIFTED_POINTER_H

#include <cstdint>

namespace simo::detail {

// The pointer p with p[base] == first[0]. Index p only inside the block that `first` starts.
// Computed on addresses, since a pointer expression must not leave its block.
template <class T>
T* shiftBack(T* first, int base) {
  const auto bytes = static_cast<std::intptr_t>(base) * static_cast<std::intptr_t>(sizeof(T));
  return reinterpret_cast<T*>(reinterpret_cast<std::intptr_t>(first) - bytes);
}

}  // namespace simo::detail

#endif
