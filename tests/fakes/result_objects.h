#ifndef QRA_TESTS_FAKES_RESULT_OBJECTS_H
#define QRA_TESTS_FAKES_RESULT_OBJECTS_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// A shared memory object with the given bytes, removed at the end of the scope. Its name is unique in the
/// system.
class ShmFile {
public:
    explicit ShmFile(const std::string& bytes);
    ~ShmFile();
    ShmFile(const ShmFile&) = delete;
    ShmFile& operator=(const ShmFile&) = delete;

    const std::string& name() const { return name_; }
    void write(const std::string& bytes) const;
    void truncate(size_t length) const;

private:
    std::string name_;
};

using IndexPairs = std::vector<std::pair<int32_t, int32_t>>;

/// The bytes of a block object as the engine writes it.
struct BlockObject {
    int32_t start_index = 0;
    int32_t total_count = 0;
    std::vector<std::string> texts;
    IndexPairs groups;

    std::string bytes() const;
};

/// The bytes of a result list object as the engine writes it.
struct ResultListObject {
    int32_t start_index = 0;
    int32_t section_index = 0;
    int32_t total_count = 0;
    IndexPairs groups;
    IndexPairs items;  ///< block number and item number
    std::vector<std::string> block_names;

    std::string bytes() const;
};

/// Replaces the 32-bit word at `offset`.
std::string with_word(std::string bytes, size_t offset, int32_t value);

#endif
