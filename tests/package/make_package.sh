# shellcheck shell=sh
# For tests to source.

# make_package GENERATOR BUILD SCRATCH: makes the package of what was built, DEB or RPM, in SCRATCH/made. Ends the test,
# with what cpack says, when it cannot be made.
make_package() {
    (cd "$2" && cpack -G "$1" -B "$3/made") >"$3/cpack.txt" 2>&1 || {
        cat "$3/cpack.txt"
        echo "FAILED: the package could not be made"
        exit 1
    }
}
