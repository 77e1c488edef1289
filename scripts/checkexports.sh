#!/usr/bin/env bash
# Checks that a shared libbsn exports only the library's namespaces: every
# defined dynamic symbol, demangled, must name something in one of them.
# Usage: scripts/checkexports.sh path/to/libbsn.so
set -euo pipefail
lib=${1:?usage: scripts/checkexports.sh LIBRARY}
[ -f "$lib" ] || { echo "checkexports: no such file: $lib" >&2; exit 1; }

nm -D --defined-only "$lib" | c++filt | awk '
BEGIN {
    n = split("MCBSN_850 MCCommon_850 MCMath_850 MCXML_850 MCDisplay_850 MCThread_850", ns, " ")
    np = split("vtable for |VTT for |typeinfo for |typeinfo name for |guard variable for |non-virtual thunk to |" \
               "virtual thunk to |covariant return thunk to |TLS wrapper function for |TLS init function for ", pre, "|")
}
# True when the entity a demangled name declares lies in one of the
# namespaces. Its qualified name is the last word, at nesting depth 0, before
# the parameter list: the name of a function template follows its return
# type, which may itself name one of the namespaces.
function inside(name,    i, c, depth, from, len, qualified, k) {
    depth = 0; from = 1; len = length(name)
    for (i = 1; i <= len; i++) {
        c = substr(name, i, 1)
        if (depth == 0 && substr(name, i, 8) == "operator" && (i == 1 || substr(name, i - 1, 1) ~ /[: ]/)) {
            i += 8
            if (substr(name, i, 2) == "()") i += 2
            else if (substr(name, i, 1) == " ") i++
            else while (i <= len && substr(name, i, 1) ~ /[-<>=!+*\/%^&|~,\[\]]/) i++
            if (substr(name, i, 2) == " <") i++
            i--
            continue
        }
        if (depth == 0 && c == "(") break
        if (c == "<" || c == "(" || c == "[") depth++
        else if (c == ">" || c == ")" || c == "]") depth--
        else if (depth == 0 && c == " " && substr(name, i + 1, 1) != "<") from = i + 1
    }
    qualified = substr(name, from, i - from)
    for (k = 1; k <= n; k++)
        if (index(qualified, ns[k] "::") == 1) return 1
    return 0
}
{
    $1 = ""; $2 = ""; name = substr($0, 3)
    total++
    changed = 1
    while (changed) {
        changed = 0
        for (k = 1; k <= np; k++)
            if (index(name, pre[k]) == 1) { name = substr(name, length(pre[k]) + 1); changed = 1 }
    }
    if (!inside(name)) { bad++; print "  " name }
}
END {
    if (total == 0) { print "checkexports: the library exports nothing" > "/dev/stderr"; exit 1 }
    if (bad > 0) { printf "checkexports: %d of %d exported symbols lie outside the library namespaces\n", bad, total > "/dev/stderr"; exit 1 }
    printf "checkexports: %d exported symbols, all in the library namespaces\n", total
}'
