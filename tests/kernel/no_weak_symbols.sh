#!/bin/sh
# Fails when an object file that is compiled for one CPU defines a symbol that the linker may take
# in place of another object's: weak, unique, or in the standard library's namespaces. Such a
# function could end up in code that runs on every CPU.
#   no_weak_symbols.sh NM OBJECT...
nm=$1
shift
status=0
checked=0
for object in "$@"; do
  case $object in
    */kernel_*.o) ;;
    *) continue ;;
  esac
  checked=$((checked + 1))
  found=$("$nm" --defined-only "$object" | awk '$2 ~ /^[WVuwv]$/ || $3 ~ /^_ZN?K?S/ { print }')
  if [ -n "$found" ]; then
    echo "$object defines:"
    echo "$found"
    status=1
  fi
done
echo "$checked kernel objects checked"
[ "$checked" -gt 0 ] && exit $status
exit 1
