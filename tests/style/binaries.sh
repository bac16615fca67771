#!/usr/bin/env bash
# How programs and libraries are linked. Each looks for others nowhere but where it is meant to: an element of a search
# path is a folder given in full, or starts at the file itself; an empty or relative one would mean the current
# folder. The loader's tables are read-only once it is done, no code has a fixed address, and stacks are guarded.
# Argument: the folder with the program and its bundles.
set -u
checked=0 found=0
complain() {
    printf '%s\n' "$file $*"
    found=1
}
while IFS= read -r -d '' file; do
    dynamic=$(readelf --dynamic --segments --wide "$file" 2> /dev/null)
    [[ $dynamic == *"Dynamic section"* ]] || continue
    checked=$((checked + 1))
    path=$(sed -nE 's/.*(RPATH|RUNPATH).*\[(.*)\]$/\2/p' <<< "$dynamic")
    if [[ $dynamic == *PATH\)* ]] && tr ':' '\n' <<< "$path" | grep -qvE '^(/|\$ORIGIN(/|$))'; then
        complain "searches for libraries in \"$path\""
    fi
    [[ $dynamic == *GNU_RELRO* && $dynamic == *BIND_NOW* ]] || complain "is not read-only once it is loaded"
    [[ $dynamic != *INTERP* || $dynamic =~ Flags:.*PIE ]] || complain "has a fixed address"
    # The helper has nothing to guard.
    [[ $file == */load-code || $(nm --dynamic --undefined-only "$file") == *__stack_chk_fail* ]] ||
        complain "does not guard its stack"
done < <(find "$1"/{rovescio,Rovescio.bundle,NotationEngine.bundle} -type f -print0)
[[ $checked -eq 5 ]] || { echo "There are $checked programs and libraries instead of 5."; exit 1; }
nm --dynamic --undefined-only "$1/rovescio" | grep -q '_chk@' || { echo "The program does not check its copies."; exit 1; }
exit $found
