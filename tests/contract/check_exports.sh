#!/bin/sh
# Usage: check_exports.sh PLUGIN.so
# The shared object must export exactly the functions that a host looks up, and must not expect any
# symbol of the host from the dynamic linker: those are looked up by name.
set -eu
plugin=$1
status=0

expected="createPlugin
getAuthor
getGUIScript
getHelpFile
getPluginDescription
getPluginName
getRegistrationOfGenericComponentLoader"

# A sanitizer's build adds symbols of its own runtime to the dynamic table.
exported=$(nm --dynamic --defined-only --format=posix "$plugin" | cut -d' ' -f1 | grep -v '^__\(asan\|odr_asan\|ubsan\|tsan\)' | sort)
if [ "$exported" != "$expected" ]; then
  echo "$plugin does not export the seven functions and nothing else."
  echo "expected:"; echo "$expected" | sed 's/^/  /'
  echo "exported:"; echo "$exported" | sed 's/^/  /'
  status=1
fi

wanted=$(nm --dynamic --undefined-only --format=posix "$plugin" | cut -d' ' -f1 | grep '^zq' || true)
if [ -n "$wanted" ]; then
  echo "$plugin expects operations of the host from the linker instead of looking them up:"
  echo "$wanted" | sed 's/^/  /'
  status=1
fi
exit $status
