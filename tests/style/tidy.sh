#!/usr/bin/env bash
# Runs clang-tidy over every compiled source, with the second compiler's warnings as errors. A source that
# passed is not checked again until it, a header or the configuration changes.
set -u
source_dir=$1 build_dir=$2
passed=$build_dir/tidy-passed
mkdir -p "$passed"

cd "$source_dir" || exit 1
shared=$(find plugin platform host tests bench \( -name '*.h' -o -name '*.def' \) -print0 | sort -z |
    xargs -0 cat .clang-tidy CMakeLists.txt cmake/Settings.cmake tests/style/tidy.sh | sha256sum)

check() {
    local stamp
    stamp=$passed/$( { echo "$shared"; cat "$1"; } | sha256sum | cut -d ' ' -f 1)
    [[ -e $stamp ]] && return 0
    local checks='clang-diagnostic-*'
    case $1 in
        # Tests get the warnings and what finds mistakes; the whole set costs as much time as all the rest.
        "$source_dir"/tests/* | "$source_dir"/bench/*)
            checks='-*,clang-diagnostic-*,bugprone-infinite-loop,bugprone-sizeof-expression'
            checks+=',bugprone-unused-return-value,bugprone-use-after-move,misc-unused-using-decls'
            ;;
    esac
    local report
    if report=$(clang-tidy -p "$build_dir" --quiet --checks="$checks" \
        --extra-arg=-Wno-unknown-warning-option "$1" 2>&1); then
        touch "$stamp"
    else
        printf '%s\n' "$report"
        return 1
    fi
}
export -f check
export source_dir build_dir passed shared

sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' "$build_dir/compile_commands.json" | sort -u |
    xargs -d '\n' -P 2 -I '{}' bash -c 'check "$1"' check '{}'
