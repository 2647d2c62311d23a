# Read by run.sh: a release of Debian, as whoever comes with a fresh machine meets it.
# shellcheck shell=sh disable=SC2154,SC2034,SC2016 # the variables are those of run.sh, or of the shell inside

compile_with() { # C++ COMPILER FOLDER: everything, with every warning an error
    echo "cmake -G Ninja -B build/$2 -D CMAKE_CXX_COMPILER=$1 -D IFWATCH_WERROR=ON -D IFWATCH_BENCH=ON -D CMAKE_BUILD_TYPE=Debug &&
        cmake --build build/$2"
}

both_commands() { # USER
    step "$1-demo" "$1" './dev demo'
    step "$1-test" "$1" './dev test'
}

fresh_root root
both_commands root
step package root './dev package'
step install root 'apt-get install -y ./build/packages/ifwatch_*.deb'
step installed root 'tools/with_router.sh /usr/bin ifwatch -i 127.0.0.1 1000 && ifwatch-extcap --extcap-interfaces && ifwatch-read samples/dial-in.pcapng'
step purge root 'apt-get purge -y ifwatch && ! find / -xdev -path "$PWD" -prune -o -name "*ifwatch*" -print | grep .'
step lintian root 'apt-get install -y --no-install-recommends lintian && ctest --preset release -R package/lintian --no-tests=error'
step clang root "apt-get install -y --no-install-recommends clang libclang-rt-dev libbenchmark-dev && $(compile_with clang++ clang)"
compilers="g++ $(version 'g++ -dumpfullversion'), clang $(version 'clang++ --version')"
if [ "$system" = debian-testing ]; then
    newest_gcc=$(inside root "apt-cache --names-only search '^g\+\+-[0-9]+\$'" | sort -V | tail -n 1 | cut -d ' ' -f 1)
    newest_clang=$(inside root "apt-cache --names-only search '^clang-[0-9]+\$'" | sort -V | tail -n 1 | cut -d ' ' -f 1)
    step newest-gcc root "apt-get install -y --no-install-recommends ${newest_gcc:?} && $(compile_with "$newest_gcc" newest-gcc)"
    step newest-clang root "apt-get install -y --no-install-recommends ${newest_clang:?} libclang-rt-${newest_clang#clang-}-dev &&
        $(compile_with "clang++-${newest_clang#clang-}" newest-clang)"
    compilers="$compilers, $newest_gcc, $newest_clang"
fi
name=$(sed -n 's/^PRETTY_NAME="\(.*\)"/\1/p' "$root/etc/os-release")
row="$name | amd64 | $compilers, tshark $(version 'tshark --version') | $(tests_of root-test)"

fresh_root somebody
both_commands somebody
row="$row; $(tests_of somebody-test) as an ordinary user"
