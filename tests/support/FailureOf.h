#pragma once

#include <exception>

#include "util/String.h"

namespace test {

// What the operation says when it fails by an E; empty when it does not fail. Other failures pass.
template <class E = std::exception, class Operation>
String FailureOf(const Operation& operation) {
    try {
        operation();
    } catch (const E& e) {
        return e.what();
    }
    return String();
}

}  // namespace test
