// The whole-file functions of CQRAUtil.
#include "common/util/qra_util.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "common/util/qra_assert.h"
#include "common/util/qra_file64.h"
#include "common/util/qra_log.h"

namespace {

struct StreamCloser {
    void operator()(FILE* stream) const { fclose(stream); }
};
using Stream = std::unique_ptr<FILE, StreamCloser>;

struct Freer {
    void operator()(char* block) const { free(block); }
};
using Block = std::unique_ptr<char, Freer>;

/// A stream that reads a file, or null. A pipe is opened without waiting for its other end.
Stream open_to_read(const std::string& path) {
    const int fd = open64(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return nullptr;
    }
    Stream stream(fdopen(fd, "r"));
    if (stream == nullptr) {
        close(fd);
    }
    return stream;
}

/// Reads all of an open regular file into a malloc block with a zero behind it.
bool read_whole(FILE* stream, char** content, long long* size) {
    struct stat info;
    if (fstat(fileno(stream), &info) != 0 || !S_ISREG(info.st_mode)) {
        return false;
    }
    if (info.st_size <= 0) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "UUID file size is %lld", static_cast<long long>(info.st_size));
        return false;
    }
    const size_t length = static_cast<size_t>(info.st_size);
    Block block(static_cast<char*>(malloc(length + 1)));
    if (block == nullptr || fread(block.get(), 1, length, stream) != length) {
        return false;
    }
    block.get()[length] = '\0';
    *content = block.release();
    *size = info.st_size;
    return true;
}

bool write_all(int fd, const char* data, long long size) {
    long long done = 0;
    while (done < size) {
        const ssize_t written = TEMP_FAILURE_RETRY(write(fd, data + done, static_cast<size_t>(size - done)));
        if (written <= 0) {
            return false;
        }
        done += written;
    }
    return true;
}

/// Reads a native 32-bit length and as many bytes; null for a length below 1. A stream that is shorter than
/// it says is a broken promise of the process that wrote it.
Block read_blob(FILE* stream, size_t& size) {
    int32_t length = 0;
    QRA_ASSERT(fread(&length, sizeof length, 1, stream) == 1);
    if (length < 1) {
        return nullptr;
    }
    struct stat info;
    QRA_ASSERT(fstat(fileno(stream), &info) == 0 && length <= info.st_size - (long long)sizeof length);
    size = static_cast<size_t>(length);
    Block content(static_cast<char*>(malloc(size)));
    QRA_ASSERT(content != NULL && fread(content.get(), 1, size, stream) == size);
    return content;
}

/// Opens a shared memory object to read, without waiting if it is a pipe, and removes its name.
Stream take_shared_memory(const char* name) {
    const int fd = shm_open(name, O_RDONLY | O_NONBLOCK, 0);
    if (fd < 0) {
        CQRAFile64::ErrMsg(errno);
        return nullptr;
    }
    Stream stream(fdopen(fd, "r"));
    if (stream == nullptr) {
        CQRAFile64::ErrMsg(errno);
        close(fd);
    }
    shm_unlink(name);
    return stream;
}

}  // namespace

bool CQRAUtil::IsFileExist(const char* path) {
    QRA_ASSERT(path != NULL);
    return access(path, R_OK) == 0;
}

bool CQRAUtil::RemoveFile(const char* path) {
    if (remove(path) != 0) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "CQRAUtil: remove [%s] failed.", path);
        return false;
    }
    return true;
}

bool CQRAUtil::LoadFile(const std::string& path, char** content, long long* size) {
    const Stream stream = open_to_read(path);
    return stream != nullptr && read_whole(stream.get(), content, size);
}

bool CQRAUtil::ReadFile(const std::string& path, char** content, long long* size) {
    const Stream stream = open_to_read(path);
    return stream != nullptr && m_ReadLock(fileno(stream.get())) && read_whole(stream.get(), content, size);
}

bool CQRAUtil::ReadFile(const std::string& path, std::string& content) {
    char* text = nullptr;
    long long size = 0;
    if (!ReadFile(path, &text, &size)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "FAILED TO LOAD FILE!, %s", path.c_str());
        return false;
    }
    const Block block(text);
    content.assign(text, static_cast<size_t>(size));
    return true;
}

bool CQRAUtil::SaveAsFile(const char* data, long long size, const std::string& path) {
    const int fd = open64(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0777);
    if (fd < 0) {
        CQRAFile64::ErrMsg(errno);
        return false;
    }
    if (!m_WriteLock(fd)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "FAILED TO mWriteLock %s, %d\n", path.c_str(), errno);
        close(fd);
        return false;
    }
    const bool complete = write_all(fd, data, size);
    if (fsync(fd) != 0) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "CQRAUtil::SaveAsFile : fsync() failed errno == %d\n.", errno);
    }
    close(fd);
    return complete;
}

bool CQRAUtil::WriteFile(const char* path, const char* shmName) {
    size_t size = 0;
    Block content;
    {
        const Stream shared = take_shared_memory(shmName);
        if (shared == nullptr) {
            return false;
        }
        content = read_blob(shared.get(), size);
    }
    if (content == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "szContext == NULL.");
        return false;
    }
    FILE* file = fopen(path, "wbe");
    if (file == nullptr) {
        CQRAFile64::ErrMsg(errno);
        return false;
    }
    bool written = fwrite(content.get(), size, 1, file) == 1 && fflush(file) == 0;
    written = fclose(file) == 0 && written;
    if (!written) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "CQRAUtil: fwrite failed.");
        RemoveFile(path);
    }
    return written;
}

bool CQRAUtil::m_ReadLock(int fd) {
    return m_LockReg(fd, F_SETLK, F_RDLCK, 0, SEEK_SET, 0) == 0;
}

bool CQRAUtil::m_WriteLock(int fd) {
    return m_LockReg(fd, F_SETLK, F_WRLCK, 0, SEEK_SET, 0) == 0;
}

int CQRAUtil::m_LockReg(int fd, int command, short type, long long offset, short whence, long long length) {
    struct flock region = {};
    region.l_type = type;
    region.l_start = offset;
    region.l_whence = whence;
    region.l_len = length;
    return fcntl(fd, command, &region);
}
