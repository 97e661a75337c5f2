#include "plugin/TAVPlugin.h"

#include "hostapi/CNZQPluginInterfaceExtern.h"

bool TAVPlugin::initPlugin() {
  if (!InitZQAccess()) return false;
  int major = 0;
  int minor = 0;
  int patch = 0;
  zqGetVersionOfCorvaneZQ(&major, &minor, &patch);
  if (checkVersionGreaterEqualVersion(major, minor, patch, 2, 1, 0)) return true;
  zqMessageBox("Sorry, can not execute the TAV plugin - CorvaneZQ version 2.1.0 or higher required.");
  return false;
}
