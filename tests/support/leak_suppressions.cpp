// What the leak check leaves out: the font library keeps a cache for the life of the process. The
// sanitizer's runtime, a shared library, finds the function by its name, so it must be visible.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}
// NOLINTEND(bugprone-reserved-identifier)
