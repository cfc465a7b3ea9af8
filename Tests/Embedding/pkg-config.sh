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
LD_LIBRARY_PATH=$work/moved/$libdir "$work/host"
