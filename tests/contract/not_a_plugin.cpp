// What the checks of the plug-in must refuse: a further export, a host operation left to the
// linker, a library beyond the runtime.
extern "C" int foreignFunction();
extern "C" int zqGetNumberOfDocsInWorkspace();

extern "C" __attribute__((visibility("default"))) int unexpectedExport() {
  return foreignFunction() + zqGetNumberOfDocsInWorkspace();
}
