#!/bin/sh
# check-headers.sh COMPILER PREFIX: the installed headers are those that Varn_3D.h includes.
set -eu

include="$2/include"
reached=$("$1" -std=c++17 -I"$include" -MM "$include/dt3Library/Varn_3D.h" |
    grep -o 'dt3Library/[A-Za-z0-9_]*\.h' | sort -u)
installed=$(cd "$include" && find dt3Library -type f | sort -u)
echo "$installed"
[ "$reached" = "$installed" ]
