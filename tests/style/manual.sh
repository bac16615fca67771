#!/usr/bin/env bash
# The manual page is well formed, and it and the help know the same options.
set -u
source_dir=$1 build_dir=$2
warnings=$(man --warnings -E UTF-8 -l "$source_dir/docs/rovescio.1" 2>&1 > /dev/null)
if [[ -n $warnings ]]; then
    echo "$warnings"
    exit 1
fi
options() {
    grep -oE -- '--[a-z][a-z-]+' | sort -u
}
diff <("$build_dir/rovescio" --help | options) \
    <(sed 's/\\-/-/g' "$source_dir/docs/rovescio.1" | grep -v '^\.\\"' | options)
