#!/usr/bin/env bash
# Fails when a source is not formatted as .clang-format says.
cd "$1" || exit 1
find plugin platform host tests bench -name '*.h' -o -name '*.cpp' | sort |
    xargs clang-format --dry-run --Werror
