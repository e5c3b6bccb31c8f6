#include "rendering/GraphicsResource.h"

namespace rendering {

unsigned int GraphicsResource::GetTotalMemoryUsage() {
    unsigned int total = 0;
    ForEach([&total](GraphicsResource& resource) { total += resource.MemoryUsage(); });
    return total;
}

}  // namespace rendering
