#!/bin/sh
# Runs the commands that the documents show, each document's in order, in a directory of its own that looks like the
# top of the tree behind `scripts/run`. What a block prints must be in the fence right below it, where there is one, and
# the pictures that are drawn into docs must be those of the tree.
#   tests/docs/commands.sh SOURCE-DIRECTORY BINARY-DIRECTORY
# A block is left out by the line above it: <!-- not run: REASON -->
set -eu
top=$(cd "$1" && pwd)
binaries=$(cd "$2" && pwd)
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
export LC_ALL=C.UTF-8 TZ=UTC HOME="$directory/home" PATH="$binaries/tools/nimbuscope:$PATH"
unset NIMBUSCOPE_STORE XDG_DATA_HOME XDG_CACHE_HOME

# shellcheck disable=SC2016
extract='
    !isOpen && /^ *```/ {
        isOpen = 1
        kind = substr($1, 4)
        indent = match($0, /`/)
        if (kind ~ /^(bash|shell|console)$/) { print "a fence of commands is named sh, not " kind; exit 1 }
        file = "/dev/null"
        if (kind == "sh" && above !~ /^ *<!-- not run: .+ -->$/) { file = ++count ".sh" }
        if (kind ~ /^(text)?$/ && isBelow) { file = count ".expected" }
        printf "" >file
        next
    }
    isOpen && /^ *```$/ { isOpen = 0; isBelow = file ~ /sh$/; next }
    isOpen { print substr($0, indent) >file; next }
    NF > 0 { above = $0; isBelow = 0 }'

mkdir "$directory/top" "$directory/home"
cd "$directory/top"
mkdir -p build/release docs/legends
cp -r "$top/docs/sample" docs/
ln -s "$binaries/tools" "$binaries/NimbuscopeIntentHandler" build/release/
export NIMBUSCOPE_STORE=build/release/sample-store
nimbuscope places import docs/sample/places.json
"$top/scripts/tour" build/release >/dev/null
unset NIMBUSCOPE_STORE

failed=0
count=0
for document in "$top"/README.md "$top"/CONTRIBUTING.md "$top"/docs/*.md "$top"/docs/formats/*.md; do
    rm -rf "$directory/run" "$directory/blocks"
    mkdir "$directory/blocks"
    cd "$directory/blocks"
    awk "$extract" "$document" || { echo "in $document"; exit 1; }
    [ -e 1.sh ] || continue
    cp -r "$directory/top" "$directory/run"
    cd "$directory/run"
    block=1
    while [ -e "../blocks/$block.sh" ]; do
        echo ". ../blocks/$block.sh >../blocks/$block.out"
        block=$((block + 1))
        count=$((count + 1))
    done >../blocks/all
    if ! sh -eux ../blocks/all >../blocks/log 2>&1; then
        echo "${document#"$top"/}: the last of these commands fails:"
        cat ../blocks/log
        failed=1
        continue
    fi
    cd ../blocks
    for expected in *.expected; do
        [ -e "$expected" ] || continue
        diff "$expected" "${expected%.expected}.out" || {
            echo "${document#"$top"/} shows another output (<) than its commands print (>)"
            failed=1
        }
    done
    cd ../run
    for picture in docs/*.png docs/*/*.png; do
        [ ! -e "$picture" ] || cmp "$picture" "$top/$picture" || failed=1
    done
done
[ "$count" -gt 5 ] || { echo "only $count blocks found"; failed=1; }
exit $failed
