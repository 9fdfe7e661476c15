# Turns the headers' plain comments into Doxygen's: the first comment of a file becomes the file's
# page, a comment above a declaration that declaration's, one behind a field or value that one's.
# Rules between groups of declarations and comments inside expressions stay what they are.
FNR == 1 { file = 1 }

{ line = $0 }

/^\/\* ----/ { print; next }

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

/^ *[^ \/*#].*\/\* .*\*\/$/ { sub(/\/\* /, "/**< ", line) }

{ print line }
