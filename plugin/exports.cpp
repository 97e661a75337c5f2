// The seven C functions by which a host finds the plug-in. Texts are constant and stay the
// plug-in's; the object of createPlugin is the caller's, who deletes it through its base class.
#include "plugin/TAVPlugin.h"

#define TAVMAP_EXPORT extern "C" __attribute__((visibility("default")))

TAVMAP_EXPORT const char* getPluginName() { return "Tavmap Mapping (TAV) v1.5"; }

TAVMAP_EXPORT const char* getPluginDescription() {
  return "Computes Tavmap Maps (<i>TAV</i>s) for selected reference regions (VOIs).<br><br>"
         "Tavmap mapping is a technique which explores directed influences (effective connectivity) between "
         "distinct regions in fMRI data. See The <b><a href=\"TAV_Help/main.html\">TAV Help Pages</a></b> for "
         "more...<br>";
}

TAVMAP_EXPORT const char* getAuthor() {
  return "<i>The Tavmap authors</i>, the open neuroimaging community  (updated by the Tavmap maintainers)";
}

TAVMAP_EXPORT const char* getHelpFile() { return "TAV_Help/main.html"; }

TAVMAP_EXPORT const char* getRegistrationOfGenericComponentLoader() { return "Overlay Tavmap Maps (tav)"; }

TAVMAP_EXPORT const char* getGUIScript() { return ""; }  // there is no script; hosts expect a text all the same

TAVMAP_EXPORT CNZQPluginInterface* createPlugin() { return new TAVPlugin; }
