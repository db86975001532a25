#include "common/util/qra_log.h"

#include <gtest/gtest.h>

#include "tests/fakes/dlog_capture.h"

TEST(QraLog, BuildsTheWholePrefixBeforeTheMessage) {
    LogCapture log;

    QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle == NULL");
    const int line = __LINE__ - 1;

    ASSERT_EQ(log.lines().size(), 1u);
    const std::string number = std::to_string(line);
    EXPECT_EQ(log.lines()[0].text, "qra_log_test.cpp: TestBody(" + number +
                                       ") > \033[31m [WARNNING]:[TestBody:" + number + "] [Thread Id:[" +
                                       std::to_string(qra_thread_id()) + "]] pHandle == NULL\033[0m");
}

TEST(QraLog, GivesEachKindOfLineItsPriorityAndColour) {
    LogCapture log;

    QRA_LOG_WARNING(QRA_TAG_WEB, "a");
    QRA_LOG_INFO(QRA_TAG_WEB, "b");
    QRA_LOG_TRACE(QRA_TAG_WEB, "c");
    QRA_LOG_DEBUG(QRA_TAG_WEB, "d");

    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].priority, 5);
    EXPECT_EQ(lines[1].priority, 4);
    EXPECT_NE(lines[1].text.find("\033[31m [INFO]:"), std::string::npos);
    EXPECT_EQ(lines[2].priority, 4);
    EXPECT_NE(lines[2].text.find("\033[33m["), std::string::npos);
    EXPECT_EQ(lines[3].priority, 3);
    EXPECT_NE(lines[3].text.find("\033[32m["), std::string::npos);
    EXPECT_EQ(lines[3].tag, "QRA-WEB");
}
