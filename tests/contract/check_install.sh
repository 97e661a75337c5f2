#!/bin/sh
# Usage: check_install.sh CMAKE BUILD_DIR HELP_DIR
# What `cmake --install` lays out for the plug-in: one complete plug-ins folder.
set -eu
cmake=$1
build=$2
help=$3
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

"$cmake" --install "$build" --prefix "$prefix" --component plugin >/dev/null

plugins=lib/tavmap/plugins
expected=$( (echo "$plugins/TAVPlugin.so"; echo "$plugins/TAVPlugin.ini"
             cd "$help" && find . -name '*.html' -o -name '*.css' -o -name '*.svg' | sed "s|^\.|$plugins/TAV_Help|") | sort)
installed=$(cd "$prefix" && find . -type f | sed 's|^\./||' | sort)
if [ "$installed" != "$expected" ]; then
  echo "The installed files are not the expected ones."
  echo "expected:"; echo "$expected" | sed 's/^/  /'
  echo "installed:"; echo "$installed" | sed 's/^/  /'
  exit 1
fi
test -f "$prefix/$plugins/TAV_Help/main.html" || { echo "TAV_Help/main.html is missing"; exit 1; }
"$(dirname "$0")/check_exports.sh" "$prefix/$plugins/TAVPlugin.so"
