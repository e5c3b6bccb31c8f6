#include "util/FileWrapper.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "util/Exception.h"

namespace util {

// With the system's reason, as it stands behind the call that failed: a full disk, most likely.
[[noreturn]] static void ThrowWriteFailure() {
    const String reason = std::strerror(errno);
    THROW(std::runtime_error, "Failed to write: " + reason);
}

static bool IsSomethingElse(const String& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

FILEWrapper::FILEWrapper(const String& path, const String& mode)
    : m_file(IsSomethingElse(path) ? nullptr : std::fopen(path.c_str(), mode.c_str())) {
    if (m_file == nullptr) THROW(std::runtime_error, "Failed to open file \"" + path + "\"");
}

FILEWrapper::~FILEWrapper() {
    if (m_file != nullptr) std::fclose(m_file);
}

void FILEWrapper::Read(void* data, size_t count) {
    if (std::fread(data, 1, count, m_file) != count) {
        THROW(std::runtime_error, "Failed to read " + std::to_string(count) + " bytes");
    }
}

void FILEWrapper::Write(const void* data, size_t count) {
    if (std::fwrite(data, 1, count, m_file) != count) {
        THROW(std::runtime_error, "Failed to write " + std::to_string(count) + " bytes");
    }
}

void FILEWrapper::Seek(int offset, int origin) {
    if (std::fseek(m_file, offset, origin) != 0) THROW(std::runtime_error, "Failed to seek in FILE");
}

void FILEWrapper::Sync() {
    if (std::fflush(m_file) != 0 || fsync(fileno(m_file)) != 0) ThrowWriteFailure();
}

void FILEWrapper::Close() {
    std::FILE* const file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0) ThrowWriteFailure();
}

}  // namespace util
