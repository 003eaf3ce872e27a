#!/bin/sh
# Compares the manual with what every command's --help prints, and lets mandoc read both pages.
#   tests/tools/manual.sh PROGRAM PAGE-OF-THE-EXTENSION
set -eu
program=$1
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
export LC_ALL=C

"$program" manual >"$directory/nimbuscope.1"
cp "$2" "$directory/"
failed=0
mandoc -T lint -W warning "$directory"/*.1 || failed=1
mandoc -T ascii -O width=400 "$directory/nimbuscope.1" | sed "s/.$(printf "\\b")//g" >"$directory/text"

section() { # HEADING: its lines
    awk -v heading="$1" '/^ ? ? ?[^ ]/ { isInside = $0 ~ "^ *" heading "$" } isInside' "$directory/text"
}
below() { # TITLE: the names below it
    awk -v title="$1:" '/^[^ ]/ { isInside = $0 == title } isInside && /^  [^ ]/ { print $1 }'
}


commands=0
check() { # WORD…: that the manual has all that the help of this command has; then the commands below it
    help=$("$program" "$@" --help)
    commands=$((commands + 1))
    { section "$*"; section OPTIONS; } >"$directory/section"
    for option in $(echo "$help" | sed -n 's/^ *\(-[^ ]*\).*/\1/p' | tr , ' '); do
        grep -qE -- "(^|[^-a-z])$option([^-a-z]|\$)" "$directory/section" || missing "$option" "$@"
    done
    for positional in $(echo "$help" | below Positionals); do
        grep -qw -- "$positional" "$directory/section" || missing "$positional" "$@"
    done
    example=$(echo "$help" | sed -n 's/^Example: //p')
    [ $# -eq 0 ] || grep -qF -- "$example" "$directory/section" || missing "$example" "$@"
    for name in $(echo "$help" | below Subcommands); do
        check "$@" "$name"
    done
}
missing() { # WHAT COMMAND…
    echo "the manual does not have: $*"
    failed=1
}
check
for method in $("$program" intents --help | sed -n 's/.*METHOD TEXT:{\(.*\)}.*/\1/p' | tr , ' '); do
    grep -qx "\.It Ic $method" "$2" || missing "$method" "of the extension"
    methods=$((${methods:-0} + 1))
done
[ "${methods:-0}" -gt 5 ] || { echo "only ${methods:-0} methods found"; failed=1; }
[ $commands -gt 30 ] || { echo "only $commands commands found"; failed=1; }
exit $failed
