# Turns the text of a terminal session into a picture: awk -v recipe=FILE -f text_to_svg.awk TEXT
# The picture is an SVG without outside parts: light text on a dark terminal, tabs expanded to 8 columns. The lines of
# the recipe go into its <desc>.

BEGIN {
    SIZE = 14
    ADVANCE = SIZE * 0.61 # of a character; monospaced fonts differ by a few hundredths
    LEADING = 19
    MARGIN = 18
    BAR = 34 # title bar
}

function expanded(text, result, at) {
    while ((at = index(text, "\t")) > 0) {
        result = result substr(text, 1, at - 1)
        result = result substr("        ", 1, 8 - length(result) % 8)
        text = substr(text, at + 1)
    }
    return result text
}

function escaped(text) {
    gsub(/&/, "\\&amp;", text)
    gsub(/</, "\\&lt;", text)
    gsub(/>/, "\\&gt;", text)
    return text
}

# What ifwatch prints is plain, as ifwatch prints it. Only what somebody has typed, and where something is left out, is
# set off.
function kind(text) {
    if (text ~ /^\$ /) return "typed"
    if (text == "...") return "gap"
    return ""
}

{
    sub(/ +$/, "")
    text[NR] = expanded($0)
    if (length(text[NR]) > columns) columns = length(text[NR])
}

END {
    width = int(2 * MARGIN + columns * ADVANCE + 0.5)
    height = BAR + 2 * MARGIN + NR * LEADING
    printf "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %d %d\" width=\"%d\" height=\"%d\" role=\"img\">\n", \
        width, height, width, height
    print "<title>An ifwatch session</title>"
    print "<desc>"
    while ((getline command < recipe) > 0) print "  " escaped(command)
    print "</desc>"
    print "<style>"
    printf "text { font: %dpx ui-monospace, SFMono-Regular, Menlo, Consolas, \"DejaVu Sans Mono\", monospace;", SIZE
    print " fill: #d0d7de; white-space: pre }"
    print ".typed { font-weight: bold } .gap { fill: #8b949e }"
    print "</style>"
    printf "<rect width=\"%d\" height=\"%d\" rx=\"8\" fill=\"#161b22\" stroke=\"#484f58\"/>\n", width, height
    for (i = 0; i < 3; i++) {
        printf "<circle cx=\"%d\" cy=\"%d\" r=\"5.5\" fill=\"%s\"/>\n", MARGIN + 4 + 19 * i, BAR / 2 + 3, \
            substr("#ff5f57#febc2e#28c840", 7 * i + 1, 7)
    }
    for (i = 1; i <= NR; i++) {
        if (text[i] == "") continue
        class = kind(text[i])
        printf "<text x=\"%d\" y=\"%d\"%s xml:space=\"preserve\">%s</text>\n", MARGIN, BAR + MARGIN + i * LEADING - 5, \
            class == "" ? "" : " class=\"" class "\"", escaped(text[i])
    }
    print "</svg>"
}
