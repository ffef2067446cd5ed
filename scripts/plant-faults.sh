#!/bin/sh
# plant-faults.sh [OPTION...] [NAME...]: plants the faults of tests/faults.txt into a copy of the
# tree, one at a time, builds what the tests need, and runs first the tests that a fault names, then,
# if these pass, all others. Prints for each fault which test fails, or that it survives. Of no use
# in every run of the tests: all faults take an hour. NAME may hold * and ?. See --help for options,
# tests/faults.txt for what the list looks like. Installs what is missing (Debian).
set -eu

cd "$(dirname -- "$0")/.."
. scripts/packages.sh

install_missing git g++ cmake ninja-build lld python3 libcli11-dev libgtest-dev libgmock-dev \
    libgmp-dev
exec nice -n 5 python3 scripts/plant_faults.py "$@"
