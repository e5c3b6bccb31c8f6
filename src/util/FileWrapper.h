#pragma once

#include <cstddef>
#include <cstdio>

#include "util/String.h"

namespace util {

// A file handle that closes itself and reports failure by std::runtime_error.
class FILEWrapper {
  public:
    // "Failed to open file "<path>""; `mode` as for fopen. What is no file, such as a pipe, is not opened: it
    // could keep its reader waiting for ever.
    FILEWrapper(const String& path, const String& mode);
    ~FILEWrapper();
    FILEWrapper(const FILEWrapper&) = delete;
    FILEWrapper& operator=(const FILEWrapper&) = delete;

    void Read(void* data, size_t count);         // "Failed to read <count> bytes" when short
    void Write(const void* data, size_t count);  // "Failed to write <count> bytes" when short
    void Seek(int offset, int origin);           // "Failed to seek in FILE"
    void Sync();   // flushes to the disk itself; "Failed to write: <the system's reason>" when it cannot
    void Close();  // reports what a late write failure leaves, likewise

    std::FILE* Get() const { return m_file; }

  private:
    std::FILE* m_file;
};

}  // namespace util
