#pragma once

#include "util/String.h"

namespace test {

// The root of the source tree, without a slash at its end. Only one file is compiled with that path, so that
// all others come from the compiler cache wherever the tree stands.
String GetSourceDir();

}  // namespace test
