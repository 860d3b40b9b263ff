#!/usr/bin/env bash
# A short session with the orvex tool over the sample library: calls, a warning, an
# error, a boxed scalar function, a builtin that calls the language, calls made the way
# compiled code makes them, a no-match report, an explanation, and a session with an
# engine object.
# Usage: demo-session.sh PATH_TO_ORVEX
orvex=$1

say() {
  printf '\n$ orvex'
  printf ' %q' "$@"
  printf '\n'
  "$orvex" "$@" || printf '(exit code %d)\n' "$?"
}

say list
say call plus 1 2
say call plus '[1 2; 3 4]' 10
say call plus 'int32(2147483647)' 'int32(5)'
say call plus "'ab'" 1
say call abs 3+4i
say call upper "'hello'"
say call strjoin '"builtin"' "'two'" "' * '"
say call size '[1 2 3; 4 5 6]'
say call class 'single(2)'
say call describe true '[1 2]'
say call reciprocal '[1 2 0]'
say call checkedSqrt -4
say call nchoosek 5 2
say call nchoosek 60 30
say call nchoosek '[5 6]' 2
say call twice 'int8(100)'
say compiled nchoosek 80 40
say compiled plus 'int8(100)' 'int8(100)'
say call plus '[1 2]' "{1}"
say call plus 1
say explain plus 'int32(1)' 'int32(2)'
say explain describe true
say show upper

# Several statements in one process: an engine object of the lxebuffer module, its
# methods, its indexing, and its elements passed on to builtins.
statements='b = lxebuffer.Buffer.create([1 2 3])
b.append([4 5])
n = b.size()
b(2)
x = plus(b(5), 10)
v = b.values()
b.missing()'
printf '\n$ orvex <<EOF\n%s\nEOF\n' "$statements"
"$orvex" <<<"$statements" || printf '(exit code %d)\n' "$?"
