#include "rendering/ImageFile.h"

#include <array>
#include <boost/algorithm/string/predicate.hpp>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "util/String.h"

// Formats: PNG, W3C Recommendation of 2003; JPEG, ITU-T T.81 annex B; BMP, the BITMAPINFOHEADER family; TGA,
// Truevision TGA file format 2.0.

namespace rendering {

namespace {

constexpr uint32_t MAX_SIDE = 8192;
constexpr size_t MAX_FILE_SIZE = size_t{512} << 20;  // bytes; a full-sized picture needs half of it

// The bytes of a file; every access is within bounds by the caller's test of Has.
class Bytes {
  public:
    explicit Bytes(std::vector<unsigned char> data) : m_data(std::move(data)) {}

    size_t GetSize() const { return m_data.size(); }
    bool Has(size_t offset, size_t count) const {
        return offset <= m_data.size() && count <= m_data.size() - offset;
    }
    const unsigned char* At(size_t offset) const { return m_data.data() + offset; }
    uint32_t Byte(size_t offset) const { return m_data[offset]; }
    uint32_t Big16(size_t o) const { return Byte(o) << 8 | Byte(o + 1); }
    uint32_t Big32(size_t o) const { return Big16(o) << 16 | Big16(o + 2); }
    uint32_t Little16(size_t o) const { return Byte(o) | Byte(o + 1) << 8; }
    uint32_t Little32(size_t o) const { return Little16(o) | Little16(o + 2) << 16; }
    bool Matches(size_t offset, const char* text, size_t length) const {
        return Has(offset, length) && std::memcmp(At(offset), text, length) == 0;
    }

  private:
    std::vector<unsigned char> m_data;
};

bool IsSideValid(uint32_t side) {
    return side >= 1 && side <= MAX_SIDE;
}

std::string CheckSides(uint32_t width, uint32_t height) {
    if (IsSideValid(width) && IsSideValid(height)) return "";
    return "Sides of " + std::to_string(width) + " by " + std::to_string(height) + " pixels, not from 1 to " +
           std::to_string(MAX_SIDE);
}

// ---- PNG ----------------------------------------------------------------------------------------------

std::array<uint32_t, 256> MakeChecksumTable() {
    std::array<uint32_t, 256> table{};
    for (uint32_t n = 0; n < 256; ++n) {
        uint32_t c = n;
        for (int k = 0; k < 8; ++k) c = (c & 1) != 0 ? 0xedb88320u ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}

uint32_t Checksum(const unsigned char* bytes, size_t count) {
    static const std::array<uint32_t, 256> s_table = MakeChecksumTable();
    uint32_t c = 0xffffffffu;
    for (size_t i = 0; i < count; ++i) c = s_table[(c ^ bytes[i]) & 0xff] ^ (c >> 8);
    return ~c;
}

// Bit depths that each colour type allows.
bool IsPngFormatValid(uint32_t depth, uint32_t colorType) {
    const bool isPowerOfTwo = depth != 0 && (depth & (depth - 1)) == 0;
    switch (colorType) {
        case 0:
            return isPowerOfTwo && depth <= 16;
        case 3:
            return isPowerOfTwo && depth <= 8;
        case 2:
        case 4:
        case 6:
            return depth == 8 || depth == 16;
        default:
            return false;
    }
}

std::string CheckPngHeader(const Bytes& file) {
    if (!file.Has(8, 25) || file.Big32(8) != 13 || !file.Matches(12, "IHDR", 4))
        return "PNG without a header";
    if (!IsPngFormatValid(file.Byte(24), file.Byte(25))) return "PNG of an unknown pixel format";
    if (file.Byte(26) != 0 || file.Byte(27) != 0 || file.Byte(28) > 1) return "PNG of an unknown method";
    return CheckSides(file.Big32(16), file.Big32(20));
}

std::string CheckPng(const Bytes& file) {
    const std::string headerFault = CheckPngHeader(file);
    if (!headerFault.empty()) return headerFault;
    for (size_t offset = 8; file.Has(offset, 12);) {
        const size_t length = file.Big32(offset);
        if (!file.Has(offset + 12, length)) return "PNG ends within a chunk";
        if (Checksum(file.At(offset + 4), length + 4) != file.Big32(offset + 8 + length)) {
            return "PNG with a damaged chunk";
        }
        if (file.Matches(offset + 4, "IEND", 4)) return "";
        offset += 12 + length;
    }
    return "PNG without an end";
}

// ---- BMP ----------------------------------------------------------------------------------------------

std::string CheckBmpSize(const Bytes& file, uint32_t width, uint32_t height, uint32_t bits) {
    const uint64_t rowSize = (uint64_t{width} * bits + 31) / 32 * 4;
    const bool fits = file.Has(file.Little32(10), rowSize * height);
    return fits ? "" : "BMP ends within its pixels";
}

std::string CheckBmp(const Bytes& file) {
    if (!file.Has(0, 54) || file.Little32(14) < 40 || !file.Has(14, file.Little32(14))) {
        return "BMP without a header";
    }
    const uint32_t width = file.Little32(18);
    // A negative height means that the upper row comes first.
    const uint32_t stored = file.Little32(22);
    const uint32_t height = stored > 0x7fffffffu ? 0u - stored : stored;
    const uint32_t bits = file.Little16(28), compression = file.Little32(30), nColors = file.Little32(46);
    const std::string fault = CheckSides(width, height);
    if (!fault.empty()) return fault;
    const bool isIndexed = bits == 1 || bits == 4 || bits == 8;
    if (!isIndexed && bits != 16 && bits != 24 && bits != 32) return "BMP of an unknown depth";
    if (compression != 0 && !(compression == 3 && (bits == 16 || bits == 32)))
        return "BMP that is compressed";
    if (isIndexed && nColors > (1u << bits)) return "BMP with too many colours";
    const size_t paletteSize = isIndexed ? 4 * size_t{nColors == 0 ? 1u << bits : nColors} : 0;
    if (14 + size_t{file.Little32(14)} + paletteSize > file.Little32(10))
        return "BMP with pixels in its header";
    return CheckBmpSize(file, width, height, bits);
}

// ---- JPEG ---------------------------------------------------------------------------------------------

bool IsFrameHeader(uint32_t marker) {
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

std::string CheckJpegFrame(const Bytes& file, size_t offset, size_t length) {
    if (length < 8) return "JPEG with a short header";
    const uint32_t nComponents = file.Byte(offset + 9);
    const bool isKnown = nComponents == 1 || nComponents == 3 || nComponents == 4;
    if (file.Byte(offset + 4) != 8 || !isKnown || length != 8 + 3 * size_t{nComponents}) {
        return "JPEG of an unknown pixel format";
    }
    return CheckSides(file.Big16(offset + 7), file.Big16(offset + 5));
}

// Walks the segments up to the first scan.
std::string CheckJpeg(const Bytes& file) {
    bool hasFrame = false;
    for (size_t offset = 2; file.Has(offset, 4);) {
        if (file.Byte(offset) != 0xff) return "JPEG with a damaged segment";
        const uint32_t marker = file.Byte(offset + 1);
        if (marker == 0xff) {  // a fill byte
            ++offset;
            continue;
        }
        const size_t length = file.Big16(offset + 2);
        if (length < 2 || !file.Has(offset + 2, length)) return "JPEG ends within a segment";
        if (marker == 0xda) return hasFrame ? "" : "JPEG without a header";
        if (IsFrameHeader(marker)) {
            const std::string fault = CheckJpegFrame(file, offset, length);
            if (!fault.empty()) return fault;
            hasFrame = true;
        }
        offset += 2 + length;
    }
    return "JPEG without a picture";
}

// ---- TGA ----------------------------------------------------------------------------------------------

constexpr size_t TGA_HEADER_SIZE = 18;

// Run-length packets must fill the picture and stay within the file.
std::string CheckTgaPackets(const Bytes& file, size_t offset, uint64_t nPixels, size_t pixelSize) {
    while (nPixels > 0) {
        if (!file.Has(offset, 1)) return "TGA ends within its pixels";
        const uint32_t packet = file.Byte(offset);
        const uint64_t count = (packet & 0x7f) + 1;
        const size_t size = pixelSize * ((packet & 0x80) != 0 ? 1 : static_cast<size_t>(count));
        if (!file.Has(offset + 1, size)) return "TGA ends within its pixels";
        if (count > nPixels) return "TGA with more pixels than its size";
        offset += 1 + size;
        nPixels -= count;
    }
    return "";
}

std::string CheckTga(const Bytes& file) {
    if (!file.Has(0, TGA_HEADER_SIZE)) return "TGA without a header";
    const uint32_t type = file.Byte(2), width = file.Little16(12), height = file.Little16(14);
    const uint32_t bits = file.Byte(16);
    const bool isTrueColor = type == 2 || type == 10, isGrey = type == 3 || type == 11;
    if (file.Byte(1) != 0 || !(isTrueColor || isGrey)) return "Not a TGA of true colours or greys";
    if (isTrueColor ? bits != 24 && bits != 32 : bits != 8) return "TGA of an unknown depth";
    const std::string fault = CheckSides(width, height);
    if (!fault.empty()) return fault;
    const size_t offset = TGA_HEADER_SIZE + file.Byte(0), pixelSize = bits / 8;
    const uint64_t nPixels = uint64_t{width} * height;
    if (type >= 9) return CheckTgaPackets(file, offset, nPixels, pixelSize);
    return file.Has(offset, static_cast<size_t>(nPixels * pixelSize)) ? "" : "TGA ends within its pixels";
}

// ---- all ----------------------------------------------------------------------------------------------

// False when the file cannot be read or is too large to be a picture.
bool ReadBytes(const std::string& path, std::vector<unsigned char>& bytes) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    unsigned char buffer[65536];
    size_t count = 0;
    while (bytes.size() <= MAX_FILE_SIZE && (count = std::fread(buffer, 1, sizeof(buffer), file)) > 0) {
        bytes.insert(bytes.end(), buffer, buffer + count);
    }
    const bool failed = std::ferror(file) != 0 || bytes.size() > MAX_FILE_SIZE;
    std::fclose(file);
    return !failed;
}

}  // namespace

std::string FindImageFault(const std::string& path) {
    std::vector<unsigned char> contents;
    if (!ReadBytes(path, contents)) return "Couldn't read " + path;
    const Bytes file(std::move(contents));
    // The library takes everything of this name for a TGA, which has no magic.
    if (boost::algorithm::ends_with(path, ".tga")) return CheckTga(file);
    if (file.Matches(0, "\x89PNG\r\n\x1a\n", 8)) return CheckPng(file);
    if (file.Matches(0, "BM", 2)) return CheckBmp(file);
    if (file.Matches(0, "\xff\xd8\xff", 3)) return CheckJpeg(file);
    return "Not a PNG, BMP, JPEG or TGA picture";
}

}  // namespace rendering
