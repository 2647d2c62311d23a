#!/bin/sh
# cross_build.sh COMPILER EMULATOR: builds for another processor in build/cross, with the checks for undefined behaviour.
# They leave out the filter of system calls, which would meet those of the emulator.
set -eu
flags=-O1
# The address of a function in Thumb code is odd, which the check of alignment takes for a mistake.
case $1 in arm-*) flags="$flags -marm" ;; esac
cmake -G Ninja -B build/cross -D CMAKE_BUILD_TYPE=Release -D CMAKE_CXX_FLAGS_RELEASE="$flags" -D CMAKE_SYSTEM_NAME=Linux -D CMAKE_SYSTEM_PROCESSOR="${1%%-*}" \
    -D CMAKE_CXX_COMPILER="$1-g++" -D CMAKE_CROSSCOMPILING_EMULATOR="$(command -v "$2")" -D IFWATCH_SANITIZERS=undefined
cmake --build build/cross --target installed emulated

# The runner starts the programs by name, which takes the emulator in front of them.
for file in "$PWD"/build/cross/ifwatch "$PWD"/build/cross/ifwatch-*; do
    mv "$file" "$file.elf"
    printf '#!/bin/sh\nexec %s -0 %s %s.elf "$@"\n' "$2" "${file##*/}" "$file" >"$file"
    chmod +x "$file"
done
