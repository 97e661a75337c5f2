#include "tests/simo/counting_new.h"

#include <cstdlib>
#include <new>

namespace {
long allocations = 0;
}

long test::allocationCount() {
  return allocations;
}

void* operator new(std::size_t bytes) {
  ++allocations;
  if (void* const memory = std::malloc(bytes == 0 ? 1 : bytes)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) {
  return operator new(bytes);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
