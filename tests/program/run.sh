#!/bin/sh
# run.sh [--update] PROGRAM FILE...: runs the sessions in the files and compares what is printed with
# what they say; with --update the files are made to say it.
#
# "== title" begins a case, in an empty directory of its own. Indented lines are a session: "$ " and
# "> " begin a command, what it prints follows, standard error included, and its exit code in
# brackets if that is not 0. Everything else is for the reader. varn3d is the program, which the command
# EMULATOR runs if that is set, $here the directory of this script.
set -eu

update=false
[ "$1" != --update ] || { update=true; shift; }
program=$1
shift
here=$(cd -- "$(dirname -- "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/bin"
printf '#!/bin/sh\nexec %s "%s" "$@"\n' "${EMULATOR:-}" "$(realpath "$program")" >"$scratch/bin/varn3d"
chmod +x "$scratch/bin/varn3d"

to_script='
    function here(word, text) { ++n; print word " <<\\END_" n "\n" text "END_" n }
    function finish() { if (command) here("run", command); command = "" }
    /^  \$ / { finish(); command = substr($0, 5) "\n"; next }
    /^  > / { command = command substr($0, 5) "\n"; next }
    /^  / { next }
    { finish(); here("say", $0 "\n") }
    /^== / { print "fresh" }
    END { finish() }'

say() { cat; }
fresh() {
    cd "$(mktemp -d "$scratch/case.XXXXXX")"
}
run() {
    cat >"$scratch/command"
    sed '1s/^/  $ /; 2,$s/^/  > /' "$scratch/command"
    code=0
    PATH="$scratch/bin:$PATH" LC_ALL=C here=$here timeout 120 sh -u "$scratch/command" </dev/null >"$scratch/output" 2>&1 ||
        code=$?
    awk '{ print "  " $0 }' "$scratch/output"
    [ $code -eq 0 ] || echo "  [$code]"
}

failures=0
for file in "$@"; do
    awk "$to_script" "$file" >"$scratch/session"
    (. "$scratch/session") >"$scratch/said"
    if $update; then
        cat "$scratch/said" >"$file"
    else
        diff -u --label "$file" --label "what varn3d does" "$file" "$scratch/said" ||
            failures=$((failures + 1))
    fi
done
[ "$failures" -eq 0 ]
