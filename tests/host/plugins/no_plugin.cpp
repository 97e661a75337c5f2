// A library that has two of a plug-in's exports only.
extern "C" __attribute__((visibility("default"))) const char* getPluginName() {
  return "half";
}
extern "C" __attribute__((visibility("default"))) const char* getAuthor() {
  return "nobody";
}
