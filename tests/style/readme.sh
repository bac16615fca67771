#!/usr/bin/env bash
# Runs the README's first command, and those of its transcripts, and compares what they print, standard error included.
set -u
source_dir=$1 build_dir=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp -r "$source_dir/examples" "$folder"
# Stands for the script of the same name, which would set up and build first.
printf '#!/bin/sh\nexec "%s/rovescio" "$@"\n' "$build_dir" > "$folder/rovescio"
chmod +x "$folder/rovescio"
cd "$folder" || exit 1

first=$(sed -n '/^```sh$/,/^```$/ { /^\.\/rovescio /p }' "$source_dir/README.md")
if ! bash -c "$first" 2> messages || [[ ! -s transposed.musicxml ]]; then
    echo "The first command does not work: $first"
    cat messages
    exit 1
fi

# A transcript is a block of lines "$ command" with the output below each.
awk '/^```console$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source_dir/README.md" > expected
if ! grep -q '^\$ ' expected; then
    echo "The README has no transcript."
    exit 1
fi
while IFS= read -r line; do
    [[ $line == '$ '* ]] || continue
    printf '%s\n' "$line"
    bash -c "${line#\$ }" 2>&1 < /dev/null
done < expected > actual
diff expected actual
