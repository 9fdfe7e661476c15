# Turns the headers' plain comments into Doxygen's: the first comment of a file becomes the file's
# page, a comment above a declaration that declaration's, one after a field or value that one's.
# Rules between groups of declarations and comments inside expressions stay what they are. In the C++
# headers, comments above members count too; what they add to namespace std is left out.
FNR == 1 { file = 1 }

{ line = $0 }

/^ *\/\* ----/ { print; next }

# A line "template <...>" waits for the next one; line numbers stay.
/^template </ && FILENAME ~ /\.hpp$/ { held = line; next }
/ std::ranges::enable_(view|borrowed_range)</ { print (held != "" ? "\n" : ""); held = ""; next }
held != "" { print held; held = "" }

/^\/\*/ {
    if (file) {
        sub(/^\/\*/, "/** @file", line)
        file = 0
    } else {
        sub(/^\/\*/, "/**", line)
    }
    print line
    next
}

/^    \/\*/ && FILENAME ~ /\.hpp$/ { sub(/\/\*/, "/**", line) }

/^ *[^ \/*#].*\/\* .*\*\/$/ { sub(/\/\* /, "/**< ", line) }

{ print line }
