#!/bin/sh
# Checks that every tracked C++ file is formatted as .clang-format says. With --fix, formats them.
set -eu

cd "$(dirname -- "$0")/.."
. scripts/packages.sh

install_missing clang-format git
mode="--dry-run --Werror"
[ "${1:-}" != --fix ] || mode=-i
# The mode is to be split into words.
# shellcheck disable=SC2086
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --style=file $mode
