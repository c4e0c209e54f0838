#!/usr/bin/env bash
# Installs the build into a scratch prefix and builds a small consumer against it, once
# through find_package(KestrixCE) and once through pkg-config.
set -euo pipefail
build=$1 source=$2 cc=${3:-cc}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" >/dev/null
libdir=$(ls -d "$work"/prefix/lib*/ | head -1)

cmake -S "$source" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
LD_LIBRARY_PATH="$libdir" "$work/cmake/consumer"
echo "find_package: consumer built and ran"

export PKG_CONFIG_PATH="$libdir/pkgconfig"
"$cc" -std=c11 "$source/consumer.c" -o "$work/pc-consumer" $(pkg-config --cflags --libs KestrixCE)
LD_LIBRARY_PATH="$libdir" "$work/pc-consumer"
echo "pkg-config: consumer built and ran"
