#!/bin/sh
# Usage: check_fails_on.sh CHECK FILE WORD...
# The check must refuse FILE, and name every WORD as the reason.
set -u
check=$1
file=$2
shift 2
if output=$("$check" "$file"); then
  echo "$check accepts $file"
  exit 1
fi
for word in "$@"; do
  case $output in
    *"$word"*) ;;
    *) echo "$check does not name $word:"; echo "$output"; exit 1 ;;
  esac
done
