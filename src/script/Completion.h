#pragma once

#include "script/ClassObject.h"

namespace script {

// Completes the dotted path at the end of `line`, ignoring case, by the variables that are reachable from
// `root`: as far as all candidates agree. Returns the candidates in byte order; one that is an object with
// contents ends in a ".". Never throws for what a script's alias function does.
StringList Complete(const ClassObjectPtr& root, String& line);

}  // namespace script
