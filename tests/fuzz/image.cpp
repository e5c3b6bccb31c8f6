#include <cstring>

#include "Fuzz.h"
#include "rendering/Image.h"
#include "util/FileWrapper.h"

namespace {

uint32_t ReadBig32(const uint8_t* p) {
    return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | p[3];
}

void WriteBig32(uint8_t* p, uint32_t value) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
}

// CRC-32 of PNG, W3C Recommendation of 2003, annex D.
uint32_t Checksum(const uint8_t* bytes, size_t count) {
    uint32_t c = 0xffffffffu;
    for (size_t i = 0; i < count; ++i) {
        c ^= bytes[i];
        for (int k = 0; k < 8; ++k) c = (c & 1) != 0 ? 0xedb88320u ^ (c >> 1) : c >> 1;
    }
    return ~c;
}

}  // namespace

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

// Nearly every changed PNG would be turned away for its checksums: they are made right again.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t oldSize, size_t maxSize, unsigned int) {
    const size_t size = LLVMFuzzerMutate(data, oldSize, maxSize);
    if (size < 8 || std::memcmp(data, "\x89PNG", 4) != 0) return size;
    for (size_t offset = 8; offset + 12 <= size;) {
        const size_t length = ReadBig32(data + offset);
        if (length > size - offset - 12) break;
        WriteBig32(data + offset + 8 + length, Checksum(data + offset + 4, length + 4));
        offset += 12 + length;
    }
    return size;
}

// A file of any bytes, under each extension that has a reader, gives a picture or a failure.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    logging::Logger::Instance();
    static const String& s_base = *new String(fuzz::MakeFolder() + "any");
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
