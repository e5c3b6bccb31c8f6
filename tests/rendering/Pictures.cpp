#include "Pictures.h"

#include <boost/crc.hpp>
#include <cstring>

#include "util/FileSystem.h"
#include "util/FileWrapper.h"

namespace test {

namespace {

void AddBig32(FileBytes& bytes, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(value >> shift));
}

void AddLittle(FileBytes& bytes, uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

void AddChunk(FileBytes& file, const char* type, const FileBytes& data) {
    AddBig32(file, static_cast<uint32_t>(data.size()));
    const size_t start = file.size();
    file.insert(file.end(), type, type + 4);
    file.insert(file.end(), data.begin(), data.end());
    boost::crc_32_type checksum;
    checksum.process_bytes(file.data() + start, file.size() - start);
    AddBig32(file, checksum.checksum());
}

// One stored block of a zlib stream.
FileBytes Store(const FileBytes& data) {
    FileBytes stream = {0x78, 0x01, 0x01};
    const uint32_t size = static_cast<uint32_t>(data.size());
    AddLittle(stream, size, 2);
    AddLittle(stream, ~size, 2);
    stream.insert(stream.end(), data.begin(), data.end());
    uint32_t a = 1, b = 0;
    for (const unsigned char byte : data) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    AddBig32(stream, b << 16 | a);
    return stream;
}

void AddBgr(FileBytes& bytes, int x, int y) {
    bytes.push_back(200);
    bytes.push_back(static_cast<unsigned char>(10 * y));
    bytes.push_back(static_cast<unsigned char>(10 * x));
}

}  // namespace

FileBytes MakePng(int width, int height) {
    FileBytes header;
    AddBig32(header, static_cast<uint32_t>(width));
    AddBig32(header, static_cast<uint32_t>(height));
    header.insert(header.end(), {8, 6, 0, 0, 0});
    FileBytes rows;
    for (int y = 0; y < height; ++y) {
        rows.push_back(0);
        for (int x = 0; x < width; ++x) {
            rows.insert(rows.end(), {static_cast<unsigned char>(10 * x), static_cast<unsigned char>(10 * y),
                                     200, static_cast<unsigned char>(255 - x)});
        }
    }
    FileBytes file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    AddChunk(file, "IHDR", header);
    AddChunk(file, "IDAT", Store(rows));
    AddChunk(file, "IEND", {});
    return file;
}

FileBytes MakeTga(int width, int height, int bits, bool runLength) {
    FileBytes file(18, 0);
    file[2] = runLength ? 10 : 2;
    file[12] = static_cast<unsigned char>(width);
    file[14] = static_cast<unsigned char>(height);
    file[16] = static_cast<unsigned char>(bits);
    file[17] = bits == 32 ? 0x28 : 0x20;  // upper row first
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (runLength) file.push_back(0x80);  // runs of one
            AddBgr(file, x, y);
            if (bits == 32) file.push_back(static_cast<unsigned char>(255 - x));
        }
    }
    return file;
}

FileBytes MakeBmp(int width, int height) {
    const int rowSize = (3 * width + 3) / 4 * 4;
    FileBytes file = {'B', 'M'};
    AddLittle(file, static_cast<uint32_t>(54 + rowSize * height), 4);
    AddLittle(file, 0, 4);
    AddLittle(file, 54, 4);
    AddLittle(file, 40, 4);
    AddLittle(file, static_cast<uint32_t>(width), 4);
    AddLittle(file, static_cast<uint32_t>(height), 4);
    AddLittle(file, 1, 2);
    AddLittle(file, 24, 2);
    file.insert(file.end(), 24, 0);
    for (int y = height - 1; y >= 0; --y) {
        const size_t start = file.size();
        for (int x = 0; x < width; ++x) AddBgr(file, x, y);
        file.resize(start + static_cast<size_t>(rowSize), 0);
    }
    return file;
}

std::string WriteFile(const std::string& name, const FileBytes& bytes) {
    util::FileSystem& files = util::FileSystem::Instance();
    const std::string path = files.GetWorkDir() + name;
    files.MakeDir(path.substr(0, path.rfind('/')));
    util::FILEWrapper file(path, "wb");
    if (!bytes.empty()) file.Write(bytes.data(), bytes.size());
    return path;
}

}  // namespace test
