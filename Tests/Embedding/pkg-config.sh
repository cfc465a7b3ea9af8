#!/usr/bin/env bash
# Builds the example host with nothing but pkg-config, against an installed kit that was moved, and runs it.
#   pkg-config.sh COMPILER SOURCE PREFIX LIBDIR WORK
set -euo pipefail
compiler=$1 source=$2 prefix=$3 libdir=$4 work=$5

rm -rf "$work"
mkdir -p "$work"
cp -a "$prefix" "$work/moved"
export PKG_CONFIG_PATH=$work/moved/$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs kestrom)"
"$compiler" -std=c++23 "$source/main.cpp" "${flags[@]}" -o "$work/host"
export LD_LIBRARY_PATH=$work/moved/$libdir
"$(dirname "$0")/check-host.sh" "$work/host"

# The library shows its own names and no others.
names=$(nm -D --defined-only "$LD_LIBRARY_PATH/libkestrom.so" | awk '{ print $3 }')
grep -qx KestromVersionString <<<"$names"
own='^(KestromVersion|_ZN7kestrom|_ZNK7kestrom|_ZT.N7kestrom|_ZTh.*N7kestrom)'
if strangers=$(grep -vE "$own" <<<"$names"); then
  printf 'exported:\n%s\n' "$strangers" >&2
  exit 1
fi
