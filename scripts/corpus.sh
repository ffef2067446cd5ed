#!/bin/sh
# The corpora of the fuzz targets are text files, fuzz/corpus/TARGET.txt: an input a line in hex, and
# after it, where the input stands for something, its name. The empty input needs no line.
#
# corpus.sh unpack TARGET DIRECTORY   makes the files that the fuzzer reads, one for each input
# corpus.sh add TARGET FILE...        adds files to the corpus, under their names if these speak:
#                                     the fuzzer's own names (hashes) are left out
set -eu

cd "$(dirname -- "$0")/.."
action=$1
corpus=fuzz/corpus/$2.txt
shift 2
case $action in
    unpack)
        mkdir -p "$1"
        # shellcheck disable=SC2016
        perl -e '
            my ($directory) = @ARGV;
            while (<STDIN>) {
                my ($hex, $name) = split;
                $hex =~ /^([0-9a-f]{2})+$/ or die "line $.: not bytes in hex\n";
                my $path = "$directory/" . ($name || "line-$.");
                open my $file, ">:raw", $path or die "$path: $!\n";
                print $file pack "H*", $hex;
            }' "$1" <"$corpus"
        ;;
    add)
        # shellcheck disable=SC2016
        perl -e '
            for my $path (@ARGV) {
                open my $file, "<:raw", $path or die "$path: $!\n";
                my $hex = unpack "H*", do { local $/; <$file> // "" };
                my ($name) = $path =~ m{([^/]+)$};
                next if $hex eq "";
                print $name =~ /[0-9a-f]{40}$|^line-/ ? "$hex\n" : "$hex $name\n";
            }' "$@" >>"$corpus"
        # Each input once, with its name if it has one.
        LC_ALL=C sort -k1,1 -k2,2r "$corpus" | awk '!seen[$1]++' >"$corpus.new"
        mv "$corpus.new" "$corpus"
        ;;
    *)
        echo "corpus.sh: unpack or add, not $action" >&2
        exit 2
        ;;
esac
