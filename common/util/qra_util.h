#ifndef QRA_COMMON_UTIL_QRA_UTIL_H
#define QRA_COMMON_UTIL_QRA_UTIL_H

#include <string>
#include <vector>

/**
 * Small jobs that many units share. No state; every function may be called from any thread.
 * Numbers in texts are read and written the same in every locale.
 */
class CQRAUtil {
public:
    // Time, text and memory.

    /// Milliseconds since 1970.
    static long long GetCurrentSystemTime();
    /// A copy with the ASCII letters in lower case; all other bytes as they are.
    static std::string ToLower(const std::string& text);
    /// Copies `src` to a new[] block; a null or empty `src` leaves `*dst` alone. `dst` must not be null.
    static void AssignValue(char** dst, const char* src);
    /// Copies `src` to a malloc block, for a client to free; a null or empty `src` leaves `*dst` alone.
    static void AssignValueByCStyle(char** dst, const char* src);
    /// The text, or "" for null.
    static std::string CharToString(const char* text);
    static int str2int(const std::string& text);
    static std::string int2str(int value);
    static std::string long2str(long value);
    /// As a stream writes it: up to six digits, "2.8", "1e+06".
    static std::string double2str(double value);
    /// Reads up to three numbers out of a text with blanks between them. `out` has room for three.
    static void SplitToDouble(const char* text, double* out, int* count);

    // Paths.

    /// What follows the last "." of the whole path, its case kept; "" without one.
    static std::string GetFileExtension(const char* path);
    /// What follows the last "/"; "" without one.
    static std::string GetFileName(const char* path);
    /// What precedes the last "." of the whole path; "" without one.
    static std::string GetFileNameWithoutExt(const char* path);
    /// Doubles every single quote, for the text of a database condition.
    static std::string AddQuoteInPath(const std::string& path);
    /// Drops all trailing "/".
    static std::string RemoveForwardSlashInPath(const std::string& path);
    /// The platform's media root with `path` appended.
    static std::string GetStoragePath(const std::string& path);
    /// The user's application directory with `path` appended.
    static std::string GetUserAppPath(const std::string& path);

    // Comparison; the argument counts in lower case, the table as it stands.

    static bool CompareExtension(const char* const* table, int count, const std::string& extension);
    static bool CompareField(const char* const* table, int count, const std::string& field);
    static bool CompareMediaExtension(const std::vector<std::string>& table, const std::string& extension);

    // Whole files; see qra_util_file.cpp.

    /// True if the file can be read. `path` must not be null.
    static bool IsFileExist(const char* path);
    static bool RemoveFile(const char* path);
    /// The whole file in a malloc block with a zero after it; false for an empty file. The caller frees.
    static bool LoadFile(const std::string& path, char** content, long long* size);
    /// As LoadFile(), under a read lock on the whole file.
    static bool ReadFile(const std::string& path, char** content, long long* size);
    static bool ReadFile(const std::string& path, std::string& content);
    /// Replaces a file's content, under a write lock on the whole file, and brings it to the disk.
    static bool SaveAsFile(const char* data, long long size, const std::string& path);
    /**
     * Moves the content of a shared memory object to a file. The object is a native 32-bit length and as many
     * bytes; it is unlinked also when the file cannot be written. One that is shorter than it says ends the
     * process.
     */
    static bool WriteFile(const char* path, const char* shmName);

    // Configuration values of the platform.

    static bool GetVConfigValueInt(const char* key, int* value);
    static bool SetVConfigValueInt(const char* key, int value);

    /// A random UUID, lower-case with dashes.
    static std::string GetUUID();

private:
    static bool m_ReadLock(int fd);
    static bool m_WriteLock(int fd);
    static int m_LockReg(int fd, int command, short type, long long offset, short whence, long long length);
};

#endif
