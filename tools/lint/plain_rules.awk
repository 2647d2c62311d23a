# Rules of the C++ sources that no other tool here knows: awk -f plain_rules.awk FILE...

function complain(text) {
    printf "%s:%d: %s\n", FILENAME, FNR, text
    bad = 1
}

FNR == 1 && FILENAME ~ /\.h$/ && !/^#pragma once$/ { complain("a header begins with #pragma once") }
FNR == 501 { complain("a file has at most 500 lines: split it along the parts of its protocol") }
/\t/ { complain("a tab") }
/[ \r]$/ { complain("a blank or carriage return at the end of a line") }
/[^\t\r -~]/ { complain("a character that is not ASCII") }

# Includes run downwards.
!/^#include "/ || FILENAME !~ /^src\// { next }
{
    split(FILENAME, path, "/")
    folder = path[2]
    split($2, quoted, "\"")
    header = quoted[2]
}
folder == "base" && header !~ /^base\// { complain("base/ knows no other folder") }
folder != "client" && header ~ /^client\// { complain("only client/ knows client/") }
folder !~ /^(base|client|trace|display)$/ && (header ~ /^trace\// || header == "display/record_display.h") {
    complain("a decoder does not know who calls it")
}

END { exit bad }
