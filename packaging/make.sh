#!/bin/sh
# Makes the packages of what is built in build/release: make.sh, from the project's root. They are left in build/packages.
set -eu
rm -rf build/packages build/cpack
mkdir -p build/packages
# No option of cpack keeps its working files out of the folder of the packages.
(cd build/release && cpack -B ../cpack)
mv build/cpack/*.deb build/cpack/*.rpm build/packages
rm -rf build/cpack
ls -l build/packages
