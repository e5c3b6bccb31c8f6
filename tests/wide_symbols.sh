#!/usr/bin/env bash
# Files built for wider registers than every processor has may define what others define too only under names of
# their own: the linker keeps one copy of an inline function for the whole program, and it might be theirs.
set -euo pipefail
library=$1
shared=$(nm -C "$library" | awk '/^[^ ].*\.o:$/ { wide = /Wide\.cpp\.o:$/; found += wide; next }
                                 wide && / [WuV] / && !/wide::/
                                 END { if (!found) print "no file named *Wide.cpp in the library" }')
[ -z "$shared" ] || { echo "$shared"; exit 1; }
