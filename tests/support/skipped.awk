# Of what ctest has kept of a run (LastTest.log): a line for each test that was skipped, with its reason.
/^[0-9]+\/[0-9]+ Test: / { name = $0; sub(/^[0-9]+\/[0-9]+ Test: /, "", name) }
sub(/^skipped: /, "") { print "skipped: " name ": " $0 }
/^[^ ].*: Skipped$/ { getline; print "skipped: " name ": " $0 }
