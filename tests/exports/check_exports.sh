#!/usr/bin/env bash
# Compares the dynamic symbols that the library defines, of every kind (functions, data,
# weak and unique symbols), with the functions that the public header declares: both
# ways, exactly. A C++ symbol (_Z...) is named as such: the standard library's template
# instances leave a shared library with default visibility unless the linker's version
# script keeps them in.
set -euo pipefail
library=$1 header=$2
# Absolute symbols (A) are version nodes, not code or data.
defined=$(nm -D --defined-only "$library" | awk '$2 != "A" { print $3 }' | sed 's/@.*//' | sort -u)
declared=$(grep -v '^#' "$header" | grep -oE 'KX_API[^(]*[ *]([A-Za-z_][A-Za-z0-9_]*)\(' \
           | sed -E 's/.*[ *]([A-Za-z_][A-Za-z0-9_]*)\($/\1/' | sort -u)
cxx=$(grep '^_Z' <<<"$defined" || true)
extra=$(comm -23 <(echo "$defined") <(echo "$declared") | grep -v '^_Z' || true)
missing=$(comm -13 <(echo "$defined") <(echo "$declared"))
[ -z "$cxx" ] || { echo "C++ symbols exported ($(echo "$cxx" | wc -l)):"; echo "$cxx" | head -20; }
[ -z "$extra" ] || { echo "exported but not declared:"; echo "$extra"; }
[ -z "$missing" ] || { echo "declared but not exported:"; echo "$missing"; }
[ -z "$cxx$extra$missing" ] && echo "$(echo "$declared" | wc -l) functions exported, as declared"
[ -z "$cxx$extra$missing" ]
