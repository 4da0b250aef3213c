# Writes a page with licence texts that any browser shows:
#
#   cmake -D OUTPUT=<file> -D TITLE=<title> -D TEXTS=<file>[;<file>...] -P writelicencepage.cmake
#
# The texts are shown to the letter, each below the name of its file.

# escape_html(<variable> <text>)
function(escape_html variable text)
  string(REPLACE "&" "&amp;" text "${text}")
  string(REPLACE "<" "&lt;" text "${text}")
  string(REPLACE ">" "&gt;" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

escape_html(title "${TITLE}")
set(page "<!DOCTYPE html>
<html lang=\"en\">
<head>
<meta charset=\"utf-8\">
<meta name=\"color-scheme\" content=\"light dark\">
<title>${title}</title>
<style>body { margin: 2em auto; max-width: 50em; padding: 0 1em; font-family: sans-serif; }
pre { white-space: pre-wrap; }</style>
</head>
<body>
<h1>${title}</h1>
")
foreach(file IN LISTS TEXTS)
  file(READ ${file} text)
  escape_html(name "${file}")
  escape_html(text "${text}")
  # A browser leaves out the line break behind the tag, so that a text which begins with one keeps it.
  string(APPEND page "<h2>${name}</h2>\n<pre>\n${text}</pre>\n")
endforeach()
string(APPEND page "</body>\n</html>\n")
file(WRITE ${OUTPUT} "${page}")
