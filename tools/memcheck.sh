#!/bin/sh
# ifwatch under valgrind: any error, or memory that nobody gave back, ends it with status 99. What valgrind says goes to
# build/memcheck/logs, so that the program's own messages stay as they are.
exec valgrind --error-exitcode=99 --leak-check=full --errors-for-leak-kinds=definite,indirect,possible \
    --log-file=build/memcheck/logs/%p.txt build/memcheck/ifwatch "$@"
