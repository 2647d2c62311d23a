# Read by run.sh: another processor. Debian's cross compiler builds, user-mode emulation runs.
# shellcheck shell=sh disable=SC2154,SC2034

case $system in
    s390x) compiler=s390x-linux-gnu emulator=qemu-s390x about='64 bits, big-endian' ;;
    i386) compiler=i686-linux-gnu emulator=qemu-i386 about='32 bits' ;;
    armhf) compiler=arm-linux-gnueabihf emulator=qemu-arm about='32 bits' ;;
esac

fresh_root root
step compiler root "dpkg --add-architecture $system && apt-get update -q &&
    apt-get install -q -y --no-install-recommends g++-$compiler cmake ninja-build qemu-user libstdc++6:$system libubsan1:$system \
        libcli11-dev libssl-dev:$system libgtest-dev:$system libgmock-dev:$system"
step build root "$here/cross_build.sh $compiler $emulator"
step test root "ctest --test-dir build/cross -j $(nproc) --timeout 7200 --output-on-failure --no-tests=error -R '^(golden|report|unit|replay)/'"
row="Debian 13 | $system ($about) | g++ $(version "$compiler-g++ -dumpfullversion"), $emulator $(version "$emulator --version") \
| $(tests_of test)"
