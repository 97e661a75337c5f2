// A library that needs a function which nobody has.
extern "C" void functionThatNobodyHas();
extern "C" __attribute__((visibility("default"))) void callIt() {
  functionThatNobodyHas();
}
