#!/usr/bin/env bash
# Proves that the check of include directions finds each kind of fault.
set -u
check=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir -p "$folder"/plugin/{kit,util} "$folder"/host/{run,engine/{model,edit}}

# Writes one source, and expects the check's verdict on the tree with it.
expect() {
    local verdict=$1 file=$2 include=$3
    echo "#include $include" > "$folder/$file"
    if bash "$check" "$folder" > /dev/null; then actual=allowed; else actual=refused; fi
    rm "$folder/$file"
    [[ $actual == "$verdict" ]] && return
    echo "$include in $file was $actual"
    exit 1
}
expect allowed plugin/kit/a.cpp '"util/text.h"'
expect allowed plugin/kit/a.cpp '<CoreFoundation/CoreFoundation.h>'
expect allowed plugin/kit/a.cpp '<string>'
expect allowed host/engine/a.cpp '"contract/records.h"'
expect allowed host/engine/edit/a.cpp '"engine/model/document.h"'
expect refused host/engine/model/a.cpp '"engine/edit/mass_edit.h"'
expect refused plugin/kit/a.cpp '"engine/document.h"'
expect refused plugin/kit/a.cpp '"shell/apply.h"'
expect refused plugin/kit/a.cpp '<zip.h>'
expect refused plugin/util/a.h '"kit/frames.h"'
expect refused host/engine/a.cpp '"kit/frames.h"'
expect refused host/engine/a.h '"musicxml/score_file.h"'
expect allowed host/run/a.cpp '"musicxml/score_file.h"'
expect refused host/run/a.cpp '"cli/messages.h"'
mkdir "$folder/host/extra"
expect refused host/extra/a.h '<string>'
