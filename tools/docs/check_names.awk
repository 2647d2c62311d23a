# Checks that what documents name is there: awk -f check_names.awk SOURCE... DOCUMENT...
# Documents end in .md; sources come before them. Of a document, every `path/like.this` and `function()` in code
# spans, every link to a file, and every path that begins a line of a folder map must exist. Paths are seen from the
# project's root, links from the document. Run from there. Status 1: something is not there.

function complain(text) {
    printf "%s:%d: %s\n", FILENAME, FNR, text
    bad = 1
}

# Whether a file or folder is there; a path may hold shell patterns.
function there(path) {
    if (path !~ /^[-A-Za-z0-9_.\/*?]+$/) return 1 # not a plain path: somebody's placeholder
    if (!(path in known)) known[path] = system("for f in " path "; do [ -e \"$f\" ] && exit 0; done; exit 1") == 0
    return known[path]
}

# Built, or made by a run: not in the repository.
function made(path) { return path ~ /^(build|\/)/ }

function check_span(span) {
    if (span ~ /^[a-z_][a-z0-9_]*\(\)$/) {
        if (!(substr(span, 1, length(span) - 2) in called)) complain("no function " span)
    } else if (span ~ /^\.?[A-Za-z0-9_]+(\/[-A-Za-z0-9_.*]*)+$/ || span ~ /^[-A-Za-z0-9_]+\.(md|txt|json|cmake)$/) {
        if (!made(span) && !there(span)) complain("no file " span)
    }
}

function check_link(target, folder) {
    if (target ~ /^(https?:|#|mailto:)/) return
    sub(/#.*/, "", target)
    folder = FILENAME
    if (!sub(/\/[^\/]*$/, "/", folder)) folder = ""
    if (!there(folder target)) complain("no file " folder target)
}

FNR == 1 { document = FILENAME ~ /\.md$/ }

!document {
    rest = $0
    while (match(rest, /[A-Za-z_][A-Za-z0-9_]*[(<]/)) {
        called[substr(rest, RSTART, RLENGTH - 1)] = 1
        rest = substr(rest, RSTART + RLENGTH)
    }
    next
}

FNR == 1 { fenced = 0 }
/^```/ { fenced = !fenced }
fenced { next }
/^    \.?[A-Za-z]+(\/[a-z_]+)*(\/|\/\*\.sh)? / {
    # A folder map; commands begin with ./ or are longer words.
    if ($1 ~ /\/(\*\.sh)?$/ && !made($1) && !there($1)) complain("no folder " $1)
}
/^    / { next }
{
    rest = $0
    while (match(rest, /`[^`]+`/)) {
        check_span(substr(rest, RSTART + 1, RLENGTH - 2))
        rest = substr(rest, RSTART + RLENGTH)
    }
    rest = $0
    while (match(rest, /\]\([^)]+\)/)) {
        check_link(substr(rest, RSTART + 2, RLENGTH - 3))
        rest = substr(rest, RSTART + RLENGTH)
    }
}

END { exit bad }
