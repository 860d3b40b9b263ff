#!/usr/bin/env bash
# A short session with the orvex tool over the sample library: its usage, calls, a
# warning, an error, a boxed scalar function, a builtin that calls the language, calls
# made the way compiled code makes them, no-match reports, an explanation, lint, a builtin
# that is not safe for several language instances, a script with operators, ranges,
# indexing, an engine object and statistics, one with comparisons, transposes, reductions
# and the workspace, and a library unloaded and loaded again during a session.
# Usage: demo-session.sh PATH_TO_ORVEX
orvex=$1

say() {
  printf '\n$ orvex'
  printf ' %q' "$@"
  printf '\n'
  "$orvex" "$@" || printf '(exit code %d)\n' "$?"
}

say --help
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
say call plus '[1;2;3]' '[10 20]'
say call minus '[1 2 3]' '[1 2]'
say call sqrt 'single([4 -4])'
say call plus 1
say call upper 5
say explain plus 'int32(1)' 'int32(2)'
say explain describe true
say show upper
say lint
printf '\n$ BUILTIN2_LOG=builtinservice::MultiOVMReporting orvex call counter\n'
BUILTIN2_LOG=builtinservice::MultiOVMReporting "$orvex" call counter 2>&1

# A script in one process: operators, a range and indexing, an engine object of the
# lxebuffer module, its methods, its indexing and assignment, its elements passed on to
# builtins, a builtin that takes it, its constructor, help,
# and how often each variant was taken; the script stops at its first error and names
# the line.
statements='x = 1 + 2*3
-2^2
y = -sqrt(x + 2) .* [1 -2]
r = 1:2:9
r(2:end-1)
m = [1 2 3; 4 5 6];
m(end, [3 1])
b = lxebuffer.Buffer.create([1 2 3])
b.append([4 5])
n = b.size()
b(2)
x = plus(b(5), 10)
y = times(x, [1 2 3])
help nchoosek
v = b.values()
b(end + 1) = 6
t = total(Buffer([1 2 3]))
b.missing()'
printf '\n$ orvex --stats <<EOF\n%s\nEOF\n' "$statements"
"$orvex" --stats <<<"$statements" || printf '(exit code %d)\n' "$?"

# What a newcomer to the session types without thinking: comparisons and logical indexing,
# logic, transposes, several statements a line, reductions with their options (the sample
# library's eq ... ctranspose and sum ... min), and the variables listed and cleared.
statements="v = [1 5 3 8]; m = [1 2; 3 4]
v(v > 2 & v < 8)
s = 'abc' == 'abd', t = ~s
m', z = [1+2i 3-4i]'
sum(m), sum(m, 2), sum(m, 'all')
mean([1 NaN 3], 'omitnan'), max(m, [], 'all'), any(v > 7)
sum(int8([100 100 -100])), sum([]), max([])
x = 3; y = 4
x == 3 && y > 5
whos
clear x y
who
help sum"
printf '\n$ orvex <<EOF\n%s\nEOF\n' "$statements"
"$orvex" <<<"$statements" || printf '(exit code %d)\n' "$?"

# A defining library that goes and comes back while the session runs: once unloaded, its
# builtins answer again once it is loaded from its bundle directory, and are unrecognized
# while it is unloaded.
modules=$(dirname "$orvex")/../modules
statements="x = plus(1, 2)
unload samplelib
load $modules/samplelib
y = plus(x, 1)
unload samplelib
z = plus(y, 1)"
printf '\n$ orvex <<EOF\n%s\nEOF\n' "$statements"
"$orvex" <<<"$statements" || printf '(exit code %d)\n' "$?"
