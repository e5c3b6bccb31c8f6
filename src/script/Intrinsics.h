#pragma once

#include "script/Scopes.h"

namespace script {

// The arithmetic of the language. The operators are declared in terms of these (Intrinsics.cpp, Register);
// a string on either side of Add concatenates, lists go element by element.
ObjectPtr Add(const ObjectPtr& a, const ObjectPtr& b);
ObjectPtr Subtract(const ObjectPtr& a, const ObjectPtr& b);
ObjectPtr Multiply(const ObjectPtr& a, const ObjectPtr& b);
ObjectPtr Divide(const ObjectPtr& a, const ObjectPtr& b);

// Makes the object `math`, enters it into the root of `parser` and declares the operators.
ClosurePtr RegisterIntrinsics(Parser& parser);

}  // namespace script
