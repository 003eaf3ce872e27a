#!/bin/sh
# Lets real shells complete command lines by the scripts that the program prints, and compares.
#   tests/tools/completion.sh PROGRAM
set -eu
program=$1
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
cd "$directory"
export HOME="$directory" TERM=dumb LC_ALL=C.UTF-8
mkdir -p here/tiles
touch here/tile-1.rad2 here/storm.png
for shell in bash zsh fish; do
    "$program" completion $shell >"nimbuscope.$shell"
done

# A command line up to the cursor, and all words that can stand there; none: the line stays as it is.
cat >cases <<'END'
ti|tile
tile re|render
places |add export import list remove search
palette l|legend list
--vers|--version
--st|--store
--store t|tiles/
--store tiles pal|palette
tile render --sch|--scheme
tile render --no|--no-snow
tile render tile-1.rad2 --o|--out-dir --output --overlay
tile render --out-dir t|tiles/
tile render t|tile-1.rad2 tiles/
tile render storm.png --overlay s|storm.png
tile encode --store tiles s|storm.png
palette legend 4 --type |Clouds FreezingRain Hail IcePellete Rain Snow
palette legend --type Rain --direction v|vertical
palette legend --direction=h|--direction=horizontal
palette export 4 --section f|freezing-rain
preferences set colorS|colorScheme
preferences set colorScheme m|
hosts reset ra|radar
intents resolve|resolveLocation
defaults write --bool |false true
api maps --ca|--ca-file
forecast show storm.png --units m|metric mixed
completion |bash fish zsh
map span --z|--zoom
sign --method t|
nothing t|
END
while IFS='|' read -r line words; do
    case $line in
    *' '*) before=${line% *}' ' ;;
    *) before= ;;
    esac
    [ -n "$words" ] && echo "$before$words" || echo "$line"
done <cases >expected


# In bash and zsh a key inserts all words that can stand at the cursor; then the line is run and prints itself.
echo 'nimbuscope() { printf "%s " "$@" >>~/out; echo >>~/out; }' >functions
typed() { # KEY
    sed "s/|.*//; s/^/nimbuscope /; s/\$/$1/" ~/cases
    echo exit
}

cat functions nimbuscope.bash >.bashrc
(cd here && typed "$(printf '\033*')" | bash --rcfile ~/.bashrc -i >../bash.log 2>&1)
mv out bash.out || { cat bash.log; exit 1; }

mkdir functions.zsh
cp nimbuscope.zsh functions.zsh/_nimbuscope
cat functions - >.zshrc <<'END'
fpath=(~/functions.zsh $fpath)
autoload -Uz compinit && compinit -u -D
zle -C all complete-word _generic
bindkey '^T' all
zstyle ':completion:all::::' completer _all_matches _complete
zstyle ':completion:all:*' insert true
END
(cd here && typed "$(printf '\024')" | script -qec 'zsh -i' /dev/null >../zsh.log 2>&1)
mv out zsh.out || { cat zsh.log; exit 1; }

# fish tells the words, each with its description.
cat nimbuscope.fish - >config.fish <<'END'
while read line
    set words (complete -C "nimbuscope $line" | string replace -r '\t.*' '')
    set before (string match -r '.* ' -- $line)
    test -n "$words"; or set words (string match -r '[^ ]*$' -- $line)
    echo $before $words >>~/out
end
END
(cd here && sed 's/|.*//' ~/cases | fish --no-config ~/config.fish >../fish.log 2>&1)
mv out fish.out || { cat fish.log; exit 1; }

sorted() { # FILE: the words of each line; whether a slash ends directories is left to the shells
    while read -r line; do
        # shellcheck disable=SC2005,SC2046,SC2086
        echo $(printf '%s\n' $line | sed 's,/$,,' | sort)
    done <"$1"
}
failed=0
sorted expected >expected.sorted
for shell in bash zsh fish; do
    sorted $shell.out >$shell.sorted
    if ! diff expected.sorted $shell.sorted; then
        echo "$shell completes otherwise than expected (<)"
        cat $shell.log
        failed=1
    fi
done
exit $failed
