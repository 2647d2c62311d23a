# skipped.awk: of the log of a run of ctest, names each test that was left out, with its reason.
/^"[^"]*" start time: / {
    split($0, parts, "\"")
    test = parts[2]
}
/^skipped: / { print "  " test ": " substr($0, length("skipped: ") + 1) }
/: Skipped$/ {
    reason = ""
    while ((getline line) > 0 && line !~ /^\[  SKIPPED \]/) {
        reason = reason (reason == "" || line == "" ? "" : " ") line
    }
    print "  " test ": " (reason == "" ? "no reason given" : reason)
}
