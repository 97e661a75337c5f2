// The host's operations as plain global functions. Each forwards to the pointer that
// InitZQAccess() looked up in the running executable; calling one that the host does not export
// is an error of the caller. They have C++ linkage and hidden visibility on purpose: C symbols
// of the same name would be replaced by the host's.
#ifndef TAVMAP_HOSTAPI_CNZQPLUGININTERFACEEXTERN_H
#define TAVMAP_HOSTAPI_CNZQPLUGININTERFACEEXTERN_H

#include "hostapi/zq_records.h"

// Binds every operation by name. False when the running executable cannot be opened or does not
// export zqGetVersionOfCorvaneZQ; then nothing is bound. Call once, before any other operation.
bool InitZQAccess();

// True when version a1.a2.a3 is b1.b2.b3 or later (lexicographic).
bool checkVersionGreaterEqualVersion(int a1, int a2, int a3, int b1, int b2, int b3);

#define ZQ_OPERATION(result, name, parameters, arguments) result name parameters;
#include "hostapi/zq_functions.def"
#undef ZQ_OPERATION

#endif
