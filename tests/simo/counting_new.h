// A program that links counting_new.cpp counts its allocations: that file replaces operator new.
#ifndef TAVMAP_TESTS_SIMO_COUNTING_NEW_H
#define TAVMAP_TESTS_SIMO_COUNTING_NEW_H

namespace test {

// The number of allocations so far.
long allocationCount();

template <class Work>
long allocationsOf(Work work) {
  const long before = allocationCount();
  work();
  return allocationCount() - before;
}

}  // namespace test

#endif
