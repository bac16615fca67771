#!/usr/bin/env bash
# Programs and libraries look for others nowhere but where they are meant to: each element of a search path is a
# folder given in full, or starts at the file itself. An empty or relative one would mean the current folder.
# Arguments: the folders that hold them.
set -u
checked=0 found=0
while IFS= read -r -d '' file; do
    dynamic=$(readelf --dynamic --wide "$file" 2> /dev/null)
    [[ $dynamic == *"Dynamic section"* ]] || continue
    checked=$((checked + 1))
    path=$(sed -nE 's/.*(RPATH|RUNPATH).*\[(.*)\]$/\2/p' <<< "$dynamic")
    [[ $dynamic == *PATH\)* ]] || continue
    if tr ':' '\n' <<< "$path" | grep -qvE '^(/|\$ORIGIN(/|$))'; then
        echo "$file searches for libraries in \"$path\""
        found=1
    fi
done < <(find "$@" -type f -not -path '*/CMakeFiles/*' -not -name '*.[ao]' -print0)
[[ $checked -gt 3 ]] || { echo "There are no programs in $*."; exit 1; }
exit $found
