// A library to be loaded before all others (LD_PRELOAD), which lets one call to the system fail, as a full
// disk, a folder that cannot be written or a machine short of memory would.
//
//   VEXA_FAULT=KIND:N        the N-th call of that kind fails; 0: none
//   VEXA_FAULT_FOLDER=PATH   only calls on files below this folder count
//   VEXA_FAULT_COUNTS=FILE   takes the number of calls of each kind, as 32-bit numbers in the order of KINDS
//
// A failing write comes twice in a row, since a full disk stays full while the library behind it tries again.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

enum Kind { OPEN, READ, WRITE, FSYNC, RENAME, MKDIR, REMOVE, MALLOC, KINDS };
const char* const NAMES[KINDS] = {"open", "read", "write", "fsync", "rename", "mkdir", "remove", "malloc"};
constexpr size_t LARGE_BLOCK = 1 << 20;  // bytes: smaller requests are not taken for a shortage

struct Plan {
    int m_kind = -1;
    uint32_t m_call = 0;
    char m_folder[PATH_MAX] = "";
    uint32_t m_none[KINDS] = {};
    uint32_t* m_counts = m_none;
};

Plan* GetPlan() {
    static Plan* s_plan = nullptr;
    static Plan s_storage;
    if (s_plan != nullptr) return s_plan;
    s_plan = &s_storage;
    if (const char* const folder = getenv("VEXA_FAULT_FOLDER")) {
        strncpy(s_storage.m_folder, folder, PATH_MAX - 1);
    }
    if (const char* const fault = getenv("VEXA_FAULT")) {
        for (int kind = 0; kind < KINDS; ++kind) {
            const size_t length = strlen(NAMES[kind]);
            if (strncmp(fault, NAMES[kind], length) != 0 || fault[length] != ':') continue;
            s_storage.m_kind = kind;
            s_storage.m_call = static_cast<uint32_t>(atoi(fault + length + 1));
        }
    }
    if (const char* const path = getenv("VEXA_FAULT_COUNTS")) {
        const int file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CREAT, 0600));
        if (file >= 0 && ftruncate(file, sizeof(s_storage.m_none)) == 0) {
            void* const memory =
                mmap(nullptr, sizeof(s_storage.m_none), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
            if (memory != MAP_FAILED) s_storage.m_counts = static_cast<uint32_t*>(memory);
        }
    }
    return s_plan;
}

bool Fails(Kind kind, int reason) {
    Plan& plan = *GetPlan();
    const uint32_t call = ++plan.m_counts[kind];
    if (plan.m_kind != kind || plan.m_call == 0) return false;
    if (call != plan.m_call && !(kind == WRITE && call == plan.m_call + 1)) return false;
    errno = reason;
    return true;
}

bool IsOurs(const char* path) {
    const Plan& plan = *GetPlan();
    char full[PATH_MAX];
    if (path[0] != '/') {
        if (getcwd(full, sizeof(full)) == nullptr) return false;
        return strncmp(full, plan.m_folder, strlen(plan.m_folder)) == 0;
    }
    return strncmp(path, plan.m_folder, strlen(plan.m_folder)) == 0;
}

bool IsOurs(int file) {
    char link[64], path[PATH_MAX];
    snprintf(link, sizeof(link), "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof(path) - 1);
    if (length <= 0) return false;
    path[length] = '\0';
    return path[0] == '/' && IsOurs(path);
}

// As the library itself would: who asks only ferror must hear of it too.
bool Fails(Kind kind, int reason, FILE* file) {
    if (!IsOurs(fileno(file)) || !Fails(kind, reason)) return false;
    file->_flags |= _IO_ERR_SEEN;
    return true;
}

template <class Function>
Function Next(const char* name, Function) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

mode_t ModeOf(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

FILE* fopen(const char* path, const char* mode) {
    static const auto s_next = Next("fopen", &fopen);
    return IsOurs(path) && Fails(OPEN, EACCES) ? nullptr : s_next(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    static const auto s_next = Next("fopen64", &fopen64);
    return IsOurs(path) && Fails(OPEN, EACCES) ? nullptr : s_next(path, mode);
}

int open(const char* path, int flags, ...) {
    static const auto s_next = Next("open", &open);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeOf(flags, arguments);
    va_end(arguments);
    return IsOurs(path) && Fails(OPEN, EACCES) ? -1 : s_next(path, flags, mode);
}

size_t fread(void* data, size_t size, size_t count, FILE* file) {
    static const auto s_next = Next("fread", &fread);
    return Fails(READ, EIO, file) ? 0 : s_next(data, size, count, file);
}

char* fgets(char* data, int size, FILE* file) {
    static const auto s_next = Next("fgets", &fgets);
    return Fails(READ, EIO, file) ? nullptr : s_next(data, size, file);
}

size_t fwrite(const void* data, size_t size, size_t count, FILE* file) {
    static const auto s_next = Next("fwrite", &fwrite);
    return Fails(WRITE, ENOSPC, file) ? 0 : s_next(data, size, count, file);
}

ssize_t write(int file, const void* data, size_t size) {
    static const auto s_next = Next("write", &write);
    return IsOurs(file) && Fails(WRITE, ENOSPC) ? -1 : s_next(file, data, size);
}

int fsync(int file) {
    static const auto s_next = Next("fsync", &fsync);
    return IsOurs(file) && Fails(FSYNC, EIO) ? -1 : s_next(file);
}

int rename(const char* from, const char* to) {
    static const auto s_next = Next("rename", &rename);
    return IsOurs(to) && Fails(RENAME, EACCES) ? -1 : s_next(from, to);
}

int mkdir(const char* path, mode_t mode) {
    static const auto s_next = Next("mkdir", &mkdir);
    return IsOurs(path) && Fails(MKDIR, ENOSPC) ? -1 : s_next(path, mode);
}

int unlink(const char* path) {
    static const auto s_next = Next("unlink", &unlink);
    return IsOurs(path) && Fails(REMOVE, EACCES) ? -1 : s_next(path);
}

int remove(const char* path) {
    static const auto s_next = Next("remove", &remove);
    return IsOurs(path) && Fails(REMOVE, EACCES) ? -1 : s_next(path);
}

void* __libc_malloc(size_t size);  // NOLINT(bugprone-reserved-identifier): the one that is replaced

void* malloc(size_t size) {
    return size >= LARGE_BLOCK && Fails(MALLOC, ENOMEM) ? nullptr : __libc_malloc(size);
}

}  // extern "C"
