#!/usr/bin/env bash
# Compares the dynamic symbols that the library defines with the functions that the
# public header declares: both ways, exactly.
set -euo pipefail
library=$1 header=$2
exported=$(nm -D --defined-only "$library" | awk '$2 == "T" { print $3 }' | sort -u)
declared=$(grep -v '^#' "$header" | grep -oE 'KX_API[^(]*[ *]([A-Za-z_][A-Za-z0-9_]*)\(' \
           | sed -E 's/.*[ *]([A-Za-z_][A-Za-z0-9_]*)\($/\1/' | sort -u)
extra=$(comm -23 <(echo "$exported") <(echo "$declared"))
missing=$(comm -13 <(echo "$exported") <(echo "$declared"))
[ -z "$extra" ] || { echo "exported but not declared:"; echo "$extra"; }
[ -z "$missing" ] || { echo "declared but not exported:"; echo "$missing"; }
[ -z "$extra$missing" ] && echo "$(echo "$declared" | wc -l) functions exported, as declared"
[ -z "$extra$missing" ]
