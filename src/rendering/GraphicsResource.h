#pragma once

#include "util/ClassTracker.h"
#include "util/Pointee.h"

namespace rendering {

// Base of all objects with GL state, so that their memory can be summed up.
class GraphicsResource : public util::Pointee, public util::ClassTracker<GraphicsResource> {
  public:
    virtual unsigned int MemoryUsage() const = 0;  // bytes, an estimate

    // Over all live resources.
    static unsigned int GetTotalMemoryUsage();
};

}  // namespace rendering
