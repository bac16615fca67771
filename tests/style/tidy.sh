#!/usr/bin/env bash
# Runs clang-tidy, with the second compiler's warnings as errors, over every source that is compiled: first those that
# were changed, then the others, on all processors. A source that passed is not checked again until it, a header of
# ours that it includes, its compiler options or the configuration changes.
set -u
source_dir=$1 build_dir=$2
passed=$build_dir/tidy-passed
mkdir -p "$passed"
cd "$source_dir" || exit 1
configuration=$(cat .clang-tidy tests/style/tidy.sh <(clang-tidy --version) | sha256sum)

# Each compiled source with its options: "file<tab>options".
commands() {
    sed -nE 's/^ *"command": "(.*)",?$/\1/p; s/^ *"file": "(.*)",?$/\t\1/p' "$build_dir/compile_commands.json" |
        awk -F '\t' '/^\t/ { print $2 "\t" options; next } { options = $0 }' | sort -u -k 1,1
}

# Each source with all of our headers that it includes, however deep: "file header header ...". A header is known by its
# name; where several have the same, all are taken.
inclusions() {
    local sources
    sources=$(find plugin platform host tests bench -name '*.h' -o -name '*.def' -o -name '*.cpp')
    { echo "$sources"; xargs grep -HoE '^ *# *include *["<][^">]+' <<< "$sources" | sed -E 's/: *#.*["<\/]/\t/'; } |
        awk -F '\t' '
            NF == 1 {
                name = $0
                sub(/.*\//, "", name)
                places[name] = places[name] " " $0
                files[++known] = $0
                next
            }
            { included[$1] = included[$1] " " $2 }
            function visit(file,    i, j, names, found) {
                if (file in seen) return
                seen[file] = 1
                list = list " " file
                split(included[file], names, " ")
                for (i in names) {
                    split(places[names[i]], found, " ")
                    for (j in found) visit(found[j])
                }
            }
            END {
                for (i = 1; i <= known; ++i) {
                    if (files[i] !~ /\.cpp$/) continue
                    split("", seen)
                    list = ""
                    visit(files[i])
                    print substr(list, 2)
                }
            }'
}

# Compiled sources that differ from where this branch left the main one, or from the last commit.
changed() {
    local main base=HEAD~
    for main in origin/HEAD origin/main main; do
        git rev-parse --quiet --verify "$main" > /dev/null || continue
        base=$(git merge-base HEAD "$main") && [[ $base != $(git rev-parse HEAD) ]] && break
        base=HEAD~
    done
    { git diff --name-only "$base"; git ls-files --others --exclude-standard; } 2> /dev/null |
        sed "s|^|$source_dir/|"
}

check() {
    local file=$1 checks='clang-diagnostic-*' stamp report
    local name=${file#"$source_dir"/}
    stamp=$passed/$({ echo "$configuration"; grep -F "$file$tab" "$work/commands"
        grep "^$name\( \|$\)" "$work/inclusions" | tr ' ' '\n' | sort | xargs cat; } | sha256sum | cut -d ' ' -f 1)
    [[ -e $stamp ]] && { touch "$stamp"; return 0; }
    case $name in
        # Tests get the warnings and what finds mistakes; the whole set costs as much time as all the rest.
        tests/* | bench/*)
            checks='-*,clang-diagnostic-*,bugprone-infinite-loop,bugprone-sizeof-expression'
            checks+=',bugprone-unused-return-value,bugprone-use-after-move,misc-unused-using-decls'
            ;;
    esac
    if report=$(clang-tidy -p "$build_dir" --quiet --checks="$checks" \
        --extra-arg=-Wno-unknown-warning-option "$file" 2>&1); then
        touch "$stamp"
        echo "passed $name"
    else
        printf '%s\n' "$report"
        return 1
    fi
}
export -f check
tab=$'\t'
export source_dir build_dir passed configuration tab

work=$(mktemp -d)
export work
trap 'rm -rf "$work"' EXIT
commands > "$work/commands"
inclusions > "$work/inclusions"
cut -f 1 "$work/commands" > "$work/all"
[[ -s $work/all ]] || { echo "$build_dir/compile_commands.json names no source"; exit 1; }
changed | grep -xFf "$work/all" > "$work/first"
result=0
{ cat "$work/first"; grep -vxFf "$work/first" "$work/all"; } |
    xargs -d '\n' -P "$(nproc)" -I '{}' bash -c 'check "$1"' check '{}' || result=1
find "$passed" -type f -mtime +30 -delete
exit $result
