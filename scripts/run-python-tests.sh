#!/bin/sh
# Installs the Python package with pip into an environment of its own, in build/python-package, and
# runs its tests and its example. Installs what is missing (Debian).
set -eu

root=$(unset CDPATH && cd -- "$(dirname -- "$0")/.." && pwd)
environment="$root/build/python-package"
. "$root/scripts/packages.sh"

install_missing g++ python3-dev python3-venv python3-pip python3-setuptools python3-wheel \
    pybind11-dev python3-pybind11 python3-numpy python3-scipy python3-pytest python3-matplotlib
# The system's interpreter: the one that these packages are for.
/usr/bin/python3 -m venv --system-site-packages "$environment"
cd "$root"
"$environment/bin/python" -m pip install --quiet --no-build-isolation --no-deps --force-reinstall .
"$environment/bin/python" -m pytest -q -p no:cacheprovider tests/python
MPLBACKEND=agg "$environment/bin/python" examples/interpolation.py "$environment/interpolation.png"
