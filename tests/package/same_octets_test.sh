#!/bin/sh
# same_octets_test.sh BUILD AGAIN: what was built is built a second time, from a copy of the sources in the folder AGAIN,
# later, by another user where the system allows it, in another time zone and with another umask. Each program and each
# package must come out the same to the octet. AGAIN stays: the next time only what has changed is compiled.
set -eu
build=$1
again=$2
source=$(cd "$(dirname "$0")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

for tool in cpack cmake dpkg-deb dpkg-shlibdeps rpmbuild; do
    command -v "$tool" >/dev/null || {
        echo "skipped: there is no $tool here"
        exit 77
    }
done

# setting NAME: what the first build was configured with.
setting() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }

# --- The sources once more; a file that is the same stays as it is, with its time

mkdir -p "$again/source" "$again/build"
cd "$source"
find CMakeLists.txt ./*.md src tools packaging man completions samples docs -type f | sed 's/^\.\///' | LC_ALL=C sort >"$scratch/files"
while read -r file; do
    cmp -s "$file" "$again/source/$file" || {
        mkdir -p "$(dirname "$again/source/$file")"
        cp "$file" "$again/source/$file"
    }
done <"$scratch/files"
(cd "$again/source" && find . -type f | sed 's/^\.\///' | LC_ALL=C sort | LC_ALL=C comm -13 "$scratch/files" - | xargs -r rm --)

# --- Built and packaged; another user by name and, outside of a changed root directory, by number

cat >"$scratch/build.sh" <<'END'
set -eu
again=$1
shift
umask 027
cmake -S "$again/source" -B "$again/build" "$@" -D IFWATCH_TESTS=OFF
cmake --build "$again/build" --target installed
cd "$again/build"
cpack -B ../packages
END
as_other='env'
if unshare --user --map-user=12345 --map-group=12345 true 2>/dev/null; then
    as_other='unshare --user --map-user=12345 --map-group=12345 env'
else
    echo "built by the same user: this system has no other for it"
fi
rm -rf "$again/packages"
# shellcheck disable=SC2086 # the command is words
$as_other -u CMAKE_CXX_COMPILER_LAUNCHER HOME="$scratch" USER=other LOGNAME=other TZ=Pacific/Kiritimati LC_ALL=C.UTF-8 \
    sh "$scratch/build.sh" "$again" -G "$(setting CMAKE_GENERATOR)" \
    -D CMAKE_BUILD_TYPE="$(setting CMAKE_BUILD_TYPE)" -D CMAKE_CXX_COMPILER="$(setting CMAKE_CXX_COMPILER)" \
    -D CMAKE_CXX_FLAGS="$(setting CMAKE_CXX_FLAGS)" -D IFWATCH_SECCOMP="$(setting IFWATCH_SECCOMP)" \
    >"$scratch/again.txt" 2>&1 || {
    cat "$scratch/again.txt"
    echo "FAILED: it could not be built again"
    exit 1
}

(cd "$build" && TZ=UTC cpack -B "$scratch/packages" >"$scratch/first.txt" 2>&1) || {
    cat "$scratch/first.txt"
    echo "FAILED: the packages could not be made"
    exit 1
}

# --- Compared

failed=0
compared=0
for file in "$build"/ifwatch "$build"/ifwatch-* "$scratch"/packages/*.deb "$scratch"/packages/*.rpm; do
    case $file in
        "$build"/*) other=$again/build/${file##*/} ;;
        *) other=$again/packages/${file##*/} ;;
    esac
    compared=$((compared + 1))
    cmp "$file" "$other" || failed=$((failed + 1))
done
echo "$compared programs and packages built twice, $failed of them not the same"
[ "$failed" -eq 0 ] && [ "$compared" -ge 4 ]
