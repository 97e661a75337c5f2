// The seven functions by which the host knows the plug-in. Texts belong to the plug-in and live as
// long as the library.
#include "plugin/TAVPlugin.h"

#define TAV_EXPORT extern "C" __attribute__((visibility("default")))

TAV_EXPORT const char* getPluginName() {
  return "Tavmap Mapping (TAV) v1.5";
}

TAV_EXPORT const char* getPluginDescription() {
  return "Computes Tavmap Maps (<i>TAV</i>s) for selected reference regions (VOIs).<br><br>"
         "Tavmap mapping is a technique which explores directed influences (effective connectivity) "
         "between distinct regions in fMRI data. "
         "See The <b><a href=\"TAV_Help/main.html\">TAV Help Pages</a></b> for more...<br>";
}

TAV_EXPORT const char* getAuthor() {
  return "<i>The Tavmap authors</i>, the open neuroimaging community  (updated by the Tavmap maintainers)";
}

// Relative to the host's plug-ins folder.
TAV_EXPORT const char* getHelpFile() {
  return "TAV_Help/main.html";
}

TAV_EXPORT const char* getRegistrationOfGenericComponentLoader() {
  return "Overlay Tavmap Maps (tav)";
}

// No GUI script: an empty text, never null.
TAV_EXPORT const char* getGUIScript() {
  return "";
}

// The host owns the object.
TAV_EXPORT CNZQPluginInterface* createPlugin() {
  return new TAVPlugin;
}
