# awk -v same=FILE -f places.awk FILE...: every place of C++ sources where one small change can be made, a line each,
# parted by tabs: file, line, column, what stands there, and what could stand there instead, one or two of them. Not in
# comments, texts, preprocessor lines and static_assert. Nor what same.tsv, with a line for each, says changes nothing:
# file, source line with @ before the place, what would stand there, the reason.

BEGIN {
    count = split("== != < <= > >= && || + - & | << >> += -=", pairs, " ")
    for (i = 1; i <= count; i += 2) {
        turned[pairs[i]] = pairs[i + 1]
        turned[pairs[i + 1]] = pairs[i]
    }
    turned["<="] = turned["<="] "\t>" # from each comparison to its edge, and to its opposite
    turned["<"] = turned["<"] "\t>="
    turned[">="] = turned[">="] "\t<"
    turned[">"] = turned[">"] "\t<="
    turned["++"] = "--"
    turned["--"] = "++"
    word["true"] = "false"
    word["false"] = "true"
    word["min"] = "max"
    word["max"] = "min"
    while ((getline row < same) > 0) {
        split(row, field, "\t")
        changes_nothing[field[1], field[2], field[3]] = 1
        unseen[field[1], field[2], field[3]] = row
    }
}

function place(column, old, new,    marked, count, choice, i, left) {
    marked = substr($0, 1, column - 1) "@" substr($0, column)
    sub(/^ +/, "", marked)
    left = ""
    count = new == "" ? 1 : split(new, choice, "\t")
    for (i = 1; i <= count; i++)
        if ((FILENAME, marked, choice[i]) in changes_nothing) delete unseen[FILENAME, marked, choice[i]]
        else left = left "\t" choice[i]
    if (left != "") printf "%s\t%d\t%d\t%s%s\n", FILENAME, FNR, column, old, left
    delete choice
}

function hex_value(digits,    i, value) {
    for (i = 1; i <= length(digits); i++)
        value = 16 * value + index("0123456789abcdef", tolower(substr(digits, i, 1))) - 1
    return value
}

# A whole number of at most eight digits, one more and one less, in the base that it stands in.
function number(column, text,    plain, value, form) {
    plain = text
    sub(/[uUlLzZ]+$/, "", plain)
    if (plain ~ /^0[xX][0-9a-fA-F]+$/ && length(plain) <= 9) {
        value = hex_value(substr(plain, 3))
        form = "0x%0" (length(plain) - 2) "X"
    } else if (plain ~ /^(0|[1-9][0-9]*)$/ && length(plain) <= 8) {
        value = plain + 0
        form = "%d"
    } else return
    plain = substr(text, length(plain) + 1)
    place(column, text, sprintf(form, value + 1) plain (value ? "\t" sprintf(form, value - 1) plain : ""))
}

# What clang-format parts by blanks is an operator of two sides; < > && & without them belong to a type.
function operator(column, rest,    text) {
    if (rest ~ /^(\+\+|--)/) {
        place(column, substr(rest, 1, 2), turned[substr(rest, 1, 2)])
        return 2
    }
    if (substr($0, column - 1, 1) == " " && match(rest, /^[=!<>&|+-]+ /)) {
        text = substr(rest, 1, RLENGTH - 1)
        if (text in turned) place(column, text, turned[text])
        return RLENGTH - 1
    }
    if (rest ~ /^-[0-9A-Za-z_(]/) place(column, "-", "")
    else if (rest ~ /^![A-Za-z_(]/) place(column, "!", "")
    match(rest, /^(->|[=!<>&|+-])/)
    return RLENGTH
}

# The length of the piece that the text begins with, 0 when the line ends with it.
function piece(column, rest) {
    if (substr(rest, 1, 2) == "//") return 0
    if (substr(rest, 1, 2) == "/*") {
        closing = "*/"
        return 2
    }
    if (substr(rest, 1, 3) == "R\"(") {
        closing = ")\""
        return 3
    }
    if (match(rest, /^"([^"\\]|\\.)*"/) || match(rest, /^'([^'\\]|\\.)*'/)) return RLENGTH
    if (match(rest, /^[0-9][0-9a-zA-Z_'.]*/)) {
        text = substr(rest, 1, RLENGTH)
        if (!asserting) number(column, text)
        return length(text)
    }
    if (match(rest, /^[A-Za-z_][A-Za-z_0-9]*/)) {
        text = substr(rest, 1, RLENGTH)
        if (text == "static_assert") asserting = 1
        if (text in word && !asserting && (text !~ /^m/ || substr($0, column - 5, 5) == "std::"))
            place(column, text, word[text])
        return length(text)
    }
    if (substr(rest, 1, 1) == ";") asserting = 0
    if (!asserting && rest ~ /^[=!<>&|+-]/) return operator(column, rest)
    return 1
}

FNR == 1 { closing = asserting = preprocessor = 0 }
preprocessor || (!closing && /^ *#/) {
    preprocessor = /\\$/
    next
}
{
    column = 1
    while (column <= length($0)) {
        rest = substr($0, column)
        if (closing) {
            at = index(rest, closing)
            if (!at) next
            column += at + 1
            closing = 0
        } else {
            step = piece(column, rest)
            if (!step) next
            column += step
        }
    }
}
END {
    for (row in unseen) print "mutate: same.tsv: no such place: " unseen[row] >"/dev/stderr"
}
