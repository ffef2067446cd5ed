#!/bin/sh
# check-output.sh SOURCE COMMAND...: the command prints what the source's head comment says.
set -eu

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
sed -n '/^\/\/ Output:$/,/^$/ { s|^//   ||p; }' "$1" >"$scratch/expected"
shift
"$@" >"$scratch/output"
sed 's/[[:space:]]*$//; /^$/d' "$scratch/output" | diff "$scratch/expected" -
