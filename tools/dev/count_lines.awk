# counts non-blank lines that are not only comment
FNR == 1 { inblock=0 }
{
  line=$0
  if (inblock) {
    if (match(line, /\*\//)) { line=substr(line, RSTART+2); inblock=0 } else next
  }
  gsub(/"([^"\\]|\\.)*"/, "\"\"", line)   # a "/*" inside a string opens no comment
  while (match(line, /\/\*/)) {
    pre=substr(line,1,RSTART-1); rest=substr(line,RSTART+2)
    if (match(rest, /\*\//)) { line=pre substr(rest,RSTART+2) } else { line=pre; inblock=1 }
  }
  sub(/^[ \t]*\/\/.*$/, "", line)
  sub(/^[ \t]*#( .*)?$/, "", line)   # python/shell comment lines
  if (line ~ /[^ \t\r]/) n++
}
END { print n+0 }
