# Prepares a file for Doxygen: awk -f docs/filter.awk README.md FILE. With groups=1 and only README.md,
# prints the groups of the reference, one for each row of the README's table of headers.

# The names of the page of a file, and of a place in it.
function page(file) {
    sub(/.*\//, "", file)
    sub(/\.md$/, "", file)
    return file
}
function place(heading) {
    heading = tolower(heading)
    gsub(/[^a-z0-9 _-]/, "", heading)
    gsub(/ /, "-", heading)
    return heading
}
# Replaces the last match by a text.
function put(text) {
    $0 = substr($0, 1, RSTART - 1) text substr($0, RSTART + RLENGTH)
}

NR == FNR && /^\| `Kesta[A-Za-z0-9]+\.h`/ {
    split($0, column, / *\| */)
    title = column[2]
    gsub(/`/, "", title)
    count = split(title, headers, /, /)
    name = "headers_" headers[1]
    sub(/\.h$/, "", name)
    for (i = 1; i <= count; ++i)
        group[headers[i]] = name
    if (groups)
        printf "/** @defgroup %s %s\n%s */\n", name, title, column[3]
}
NR == FNR { next }

# A whole header belongs to its group. The blank line after the include guard is used to say so.
FNR == 1 {
    header = FILENAME
    sub(/.*\//, "", header)
}
header in group && !opened && /^$/ {
    opened = 1
    $0 = "/** @addtogroup " group[header] " */ /** @{ */"
}
# Default copying needs no documentation; nor do macros that hide functions, and
# the symbol that only the linker needs.
/^ +[^(]*\(const [A-Za-z0-9_]+& [a-zA-Z]+\) = default;( *\/\/.*)?$/ { $0 = "" }
header in group && /^#define [A-Z0-9_]+\(|KESTA_ABI/ { $0 = "" }
# Members without a blank line between them share the comment of the first.
header in group {
    if (ended && /^(    [a-zA-Z]|template)/)
        sub(/^ */, "&/** As the one above. */ ")
    ended = /^    .*[;}]( *\/\/\/<.*)?$/ && !/^     / || /^}$/
}

# Headings of pages get the names that links use, made unique by the name of the file.
FILENAME ~ /\.md$/ && /^```/ { code = !code }
FILENAME ~ /\.md$/ && !code {
    if (/^##+ / && !/\{#/) {
        heading = $0
        sub(/^#+ /, "", heading)
        $0 = $0 " {#" page(FILENAME) "-" place(heading) "}"
    }
    while (match($0, /\]\([A-Za-z0-9.\/_-]*#[^)]*\)/)) {
        split(substr($0, RSTART + 2, RLENGTH - 3), link, "#")
        put("](@ref " page(link[1] ? link[1] : FILENAME) "-" link[2] ")")
    }
    # Links to files that only the site shows as pages.
    gsub(/\]\((\.\.\/)?examples\/?\)/, "](@ref examples)")
    gsub(/\]\((docs\/)?kesta\.1\)/, "](@ref man_kesta_1)")
    gsub(/\]\((docs\/)?KestaDebug\.ini\.5\)/, "](@ref man_KestaDebug_ini_5)")
    # Doxygen would look for a name of the global scope.
    while (match($0, /`::[^`]*`/))
        put("<code>\\" substr($0, RSTART + 1, RLENGTH - 2) "</code>")
}
{ print }
END {
    if (opened)
        print "/** @} */"
}
