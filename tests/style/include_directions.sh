#!/usr/bin/env bash
# Fails when a source includes a header of a room that it must not know, or a library that it must not use.
set -u
cd "$1" || exit 1

# Each room, and the rooms whose headers it may include.
rules='
plugin/contract contract
plugin/util util
plugin/kit kit util contract
plugin/transform transform kit util contract
plugin/retrograde retrograde kit util contract
plugin/shell shell transform retrograde kit util contract
host/engine engine contract
host/xml xml
host/musicxml musicxml xml engine contract
host/dialogs dialogs engine contract
host/playback playback engine contract
host/run run dialogs musicxml playback engine contract
host/validate validate run dialogs engine contract
host/cli cli validate run dialogs musicxml playback engine contract
'

# Inside a room with rooms of its own, each knows itself and those behind it. What lies beside them may know all.
inner_rules='
host/engine/model model
host/engine/edit edit model
host/engine/interface interface edit model
host/musicxml/rules rules
host/musicxml/file file rules
host/musicxml/reading reading file rules
host/musicxml/writing writing reading file rules
'
found=0
complain() {
    printf '%s\n' "$1"
    found=1
}

known=' '
while read -r room allowed; do
    [[ -n $room ]] || continue
    known+="$room "
    [[ -d $room ]] || continue
    while IFS=: read -r file line include; do
        header=$(sed -n 's/.*"\(.*\)".*/\1/p' <<< "$include")
        [[ " $allowed " == *" ${header%%/*} "* ]] || complain "$file:$line: $room must not include $header"
    done < <(grep -rnE '^ *# *include *"' "$room")
done <<< "$rules"

while read -r room allowed; do
    [[ -n $room && -d $room ]] || continue
    outer=$(basename "$(dirname "$room")")
    while IFS=: read -r file line include; do
        header=$(sed -n 's/.*"\(.*\)".*/\1/p' <<< "$include")
        inner=${header#"$outer"/}
        [[ " $allowed " == *" ${inner%%/*} "* ]] || complain "$file:$line: $room must not include $header"
    done < <(grep -rnE "^ *# *include *\"$outer/" "$room")
done <<< "$inner_rules"

# A new room needs a rule, and nothing of the plug-in lies outside of them.
for room in plugin/*/ host/*/; do
    room=${room%/}
    [[ $room == plugin/resources || $known == *" $room "* ]] || complain "$room: no rule says what it may include"
done

# The plug-in uses the C++ standard library, the platform's two headers, and to find its own bundle the dynamic
# loader and the splitting of paths.
while IFS=: read -r file line include; do
    header=$(sed -n 's/.*<\(.*\)>.*/\1/p' <<< "$include")
    case $header in
        CoreFoundation/CoreFoundation.h | Carbon/Carbon.h | dlfcn.h | libgen.h) ;;
        *[./]*) complain "$file:$line: the plug-in must not use <$header>" ;;
    esac
done < <(grep -rnE '^ *# *include *<' plugin --include='*.h' --include='*.cpp')

exit $found
