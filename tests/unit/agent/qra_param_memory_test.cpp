// The parameter records when memory runs out. Alone in its program: it stands in for strdup() and for new.
#include <gtest/gtest.h>
#include <qra/qra_param.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "tests/fakes/dlog_capture.h"

namespace {

bool g_exhausted = false;

}  // namespace

extern "C" char* strdup(const char* text) noexcept {
    const size_t size = strlen(text) + 1;
    char* copy = g_exhausted ? nullptr : static_cast<char*>(malloc(size));
    return copy == nullptr ? nullptr : static_cast<char*>(memcpy(copy, text, size));
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return g_exhausted ? nullptr : malloc(size);
}

void operator delete(void* block) noexcept {
    free(block);
}

void operator delete(void* block, size_t) noexcept {
    free(block);
}

void* operator new(size_t size) {
    return malloc(size);
}

TEST(QraParamMemory, CreateWithoutMemoryGivesNoRecord) {
    LogCapture log;
    qra_general_param_h record = nullptr;

    g_exhausted = true;
    const qra_error_code_e code = qra_create_general_param(&record);
    g_exhausted = false;

    EXPECT_EQ(code, QRA_ERROR_OUT_OF_MEMORY);
    EXPECT_EQ(record, nullptr);
    EXPECT_TRUE(log.contains("Out of memory."));
}

TEST(QraParamMemory, ATextThatCannotBeCopiedLeavesTheOneBefore) {
    LogCapture log;
    qra_general_param_h record = nullptr;
    ASSERT_EQ(qra_create_general_param(&record), QRA_ERROR_NONE);
    ASSERT_EQ(qra_param_set_general_path(record, "before"), QRA_ERROR_NONE);
    char* text = nullptr;

    g_exhausted = true;
    const qra_error_code_e set = qra_param_set_general_path(record, "after");
    const qra_error_code_e get = qra_param_get_general_path(record, &text);
    g_exhausted = false;

    EXPECT_EQ(set, QRA_ERROR_OUT_OF_MEMORY);
    EXPECT_EQ(get, QRA_ERROR_OUT_OF_MEMORY);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(log.count("Out of memory."), 2);
    EXPECT_EQ(qra_param_get_general_path(record, &text), QRA_ERROR_NONE);
    EXPECT_STREQ(text, "before");
    free(text);
    EXPECT_EQ(qra_destroy_general_param(record), QRA_ERROR_NONE);
}
