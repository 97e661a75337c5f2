// A library that is no part of the C and C++ runtime.
extern "C" __attribute__((visibility("default"))) int foreignFunction() {
  return 1;
}
