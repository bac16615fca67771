#!/usr/bin/env bash
# The script rovescio runs from any folder, leaves the standard streams to the program and is silent once the
# program is built.
set -eu
source_dir=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
ln -s "$source_dir/rovescio" "$folder/linked"
cp "$source_dir/examples/greensleeves.musicxml" "$folder/a b.musicxml"
cd "$folder"
"$source_dir/rovescio" --version > /dev/null 2>&1
./linked "a b.musicxml" --steps 1 -o - --quiet 2> err | "$source_dir/rovescio" - --steps -1 -o new.musicxml --quiet 2>> err
[[ -s new.musicxml && ! -s err ]]
code=0
"$source_dir/rovescio" nothing.musicxml --info 2> err || code=$?
[[ $code -eq 3 ]]
