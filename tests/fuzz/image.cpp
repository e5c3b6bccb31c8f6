#include <unistd.h>

#include "Fuzz.h"
#include "rendering/Image.h"
#include "util/FileWrapper.h"

// A file of any bytes, under each extension that has a reader, gives a picture or a failure.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    logging::Logger::Instance();
    static const String& s_base = *new String("/tmp/vexa-fuzz-" + std::to_string(getpid()));
    for (const char* const extension : {".png", ".tga", ".raw"}) {
        const String path = s_base + extension;
        {
            util::FILEWrapper file(path, "wb");
            if (size > 0) file.Write(data, size);
        }
        try {
            rendering::ImageRGBA32::LoadFile(path);
        } catch (const std::exception&) {
        }
        std::remove(path.c_str());
    }
    logging::Logger::Instance().Update();
    util::Pointee::SweepHandles();
    return 0;
}
