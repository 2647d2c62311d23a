#!/bin/sh
# Do the tests notice a mistake? mutate.sh [COUNT [SEED]], run from the project's root: makes COUNT (300) changes of one
# place each somewhere in src/, one after the other in a copy of the tree, and runs the golden, unit, end-to-end and
# replay tests against each, those that are quick and likely to notice first, until one fails. Prints which changes
# none did notice, and fails when they are more than a few. The same seed makes the same changes of the same tree.
set -eu

WORK=build/mutate  # of which tree/ and built/ are the copy and its build, clean/ the build without a change
MIN_NOTICED=98     # per cent
TIME_LIMIT=180     # seconds, for a test: a change may make it wait
BUSY_LIMIT=30      # seconds of a processor, for a process but the replay's: a change may make it loop
SIZE_LIMIT=8000000 # of a process, in kB, and of a file, in half kB: a change may make it print without end
FAILED_TESTS=Testing/Temporary/LastTestsFailed.log # none when what a test printed was more than ctest could hold

count=${1:-300}
seed=${2:-$(date +%s)}
jobs=$(nproc 2>/dev/null || getconf _NPROCESSORS_ONLN 2>/dev/null || echo 1)
tools=$PWD/tools/mutate
log=$WORK/log
results=$WORK/results.tsv

case $count$seed in
    *[!0-9]*)
        echo "usage: ./dev mutate [COUNT [SEED]]" >&2
        exit 2
        ;;
esac

copy_tree() {
    rm -rf "$WORK"
    mkdir -p "$WORK/tree"
    for entry in *; do
        [ "$entry" = build ] || cp -pR "$entry" "$WORK/tree"
    done
}

# Without a change every test passes, or what follows says nothing.
build_clean() {
    echo "building (without optimisation) and testing what is not changed"
    {
        cmake -S "$WORK/tree" -B "$WORK/built" -G Ninja -D CMAKE_BUILD_TYPE=Debug -D CMAKE_CXX_FLAGS_DEBUG='-O0 -w' \
            -D IFWATCH_WERROR=OFF &&
            build_changed e2e_tests unit_tests replay &&
            run_tests unit && run_tests golden '^golden/' && run_tests e2e '^e2e/' && run_tests replay '^replay/'
    } >"$log" 2>&1 || {
        cat "$log"
        echo "mutate: the tree does not build, or its tests fail, as it is" >&2
        exit 1
    }
    cp -pR "$WORK/built" "$WORK/clean"
}

build_changed() { cmake --build "$WORK/built" --target "$@"; }

# run_tests NAME PATTERN: what failed is run again, so that only a change makes it fail, not the load of the machine.
run_tests() (
    ulimit -f "$SIZE_LIMIT"
    export ASAN_OPTIONS=hard_rss_limit_mb=2000
    # The replay takes long, and its sanitizers addresses without end.
    # shellcheck disable=SC3045 # dash and bash, which are the /bin/sh of Linux, have these
    [ "$1" = replay ] || { ulimit -t "$BUSY_LIMIT"; ulimit -v "$SIZE_LIMIT"; }
    cd "$WORK/built"
    if [ "$1" = unit ]; then # all in one process: a tenth of the time
        run_unit_tests || run_unit_tests
    else
        run_pattern "$2" || { [ -s "$FAILED_TESTS" ] && ctest --rerun-failed --timeout "$TIME_LIMIT" && run_pattern "$2"; }
    fi
)

run_unit_tests() { timeout "$TIME_LIMIT" ./unit_tests --gtest_fail_fast; }

run_pattern() { ctest --no-tests=error --stop-on-failure --timeout "$TIME_LIMIT" -j "$jobs" -R "$1"; }

# Whether the compiler made the same of it, as of what only the tools make of a header of src/: no test that is run here
# asks for that. All of ifwatch but the start is in the library.
made_the_same() {
    for part in libifwatch_core.a CMakeFiles/ifwatch.dir/src/client/main.cpp.o; do
        cmp -s "$WORK/clean/$part" "$WORK/built/$part" || return 1
    done
}

# Names the test that failed last, as ctest does; of others, such as a crash of the unit tests, what they are: $1.
failed_test() {
    found=$(sed -n -e 's/.*Test *#[0-9]*: \([^ ]*\) .*\*\*\*.*/\1/p' \
        -e 's/^\[  FAILED  \] \([^ ]*\) (.*/unit\/\1/p' "$log" | tail -n 1)
    echo "${found:-$1}"
}

# Names the test that notices the change of the file; nothing when none does. Fails when there is nothing to notice: it
# does not compile, or makes no difference to what is compiled.
tests_that_notice() {
    folder=${1#src/}
    folder=${folder%%/*}
    [ -d "tests/golden/$folder" ] || folder='display'
    build_changed ifwatch >"$log" 2>&1 || return 1
    ! made_the_same || return 1
    while read -r name pattern target; do
        build_changed "$target" >"$log" 2>&1 || return 1
        run_tests "$name" "$pattern" >"$log" 2>&1 || {
            failed_test "$name"
            return 0
        }
    done <<END
golden ^golden/$folder/ golden_runner
unit ^unit/ unit_tests
golden ^golden/ golden_runner
e2e ^e2e/ e2e_tests
replay ^replay/ replay
END
}

# change_line FILE LINE COLUMN OLD NEW: the file's text with the change.
change_line() {
    awk -v line="$2" -v column="$3" -v old="$4" -v new="$5" '
        FNR == line { $0 = substr($0, 1, column - 1) new substr($0, column + length(old)) }
        { print }' "$1"
}

# try_change FILE LINE COLUMN OLD NEW: adds its line to the results, when there is anything to notice.
try_change() {
    mv "$WORK/tree/$1" "$WORK/kept"
    change_line "$WORK/kept" "$2" "$3" "$4" "$5" >"$WORK/tree/$1"
    if noticed=$(tests_that_notice "$1"); then
        printf '%s\t%s\t%s\t%s\t%s\n' "$1" "$2" "$4" "$5" "${noticed:-none}" >>"$results"
        number=$((number + 1))
        printf '%d: %s:%d:%d: %s -> %s: %s\n' "$number" "$1" "$2" "$3" "$4" "${5:-nothing}" "${noticed:-NOT NOTICED}"
    fi
    mv "$WORK/kept" "$WORK/tree/$1"
    rm -rf "$WORK/built"
    cp -pR "$WORK/clean" "$WORK/built"
}

report() {
    status=$?
    trap '' INT TERM
    trap - EXIT
    [ "$number" -ge "$count" ] || {
        echo "mutate: $number of $count changes were tried" >&2
        status=1
    }
    [ ! -s "$results" ] || awk -v seed="$seed" -v wanted="$MIN_NOTICED" -f "$tools/summary.awk" "$results" || status=1
    exit "$status"
}

copy_tree
echo "seed $seed"
build_clean
(cd "$WORK/tree" && find src -name '*.cpp' -o -name '*.h' | LC_ALL=C sort |
    xargs awk -v same="$tools/same.tsv" -f "$tools/places.awk") |
    awk -v seed="$seed" -f "$tools/choose.awk" >"$WORK/changes.tsv"
number=0
: >"$results"
trap 'exit 130' INT TERM
trap report EXIT
while [ "$number" -lt "$count" ] && IFS='	' read -r file line column old new; do
    try_change "$file" "$line" "$column" "$old" "$new" </dev/null
done <"$WORK/changes.tsv"
