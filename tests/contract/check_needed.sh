#!/bin/sh
# Usage: check_needed.sh PLUGIN.so
# The shared object may need the C and C++ runtime and nothing else, and no folder to find it in.
set -eu
plugin=$1

needed=$(readelf --dynamic --wide "$plugin" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
if [ -z "$needed" ]; then
  echo "$plugin states no library at all: is it a shared object?"
  exit 1
fi

status=0
for library in $needed; do
  case $library in
    libstdc++.so.*|libm.so.*|libc.so.*|libgcc_s.so.*|ld-linux*.so.*) ;;
    *) echo "$plugin needs $library, which is no part of the C and C++ runtime"; status=1 ;;
  esac
done

if readelf --dynamic --wide "$plugin" | grep -E '\((RPATH|RUNPATH)\)'; then
  echo "$plugin carries a library path of the machine that built it"
  status=1
fi
exit $status
