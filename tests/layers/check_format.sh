#!/bin/sh
# Compares the C and C++ files below a folder with what clang-format makes of them: check_format.sh CLANG_FORMAT ROOT
set -eu
"$1" --version | grep -q 'version 14\.' || {
    echo "the format is that of clang-format 14; this is $("$1" --version)"
    exit 77
}
cd "$2"
find ImporterTessel benchmarks examples kestrel tessel tests -name '*.h' -o -name '*.cpp' -o -name '*.c' |
    sort | xargs "$1" --dry-run --Werror
