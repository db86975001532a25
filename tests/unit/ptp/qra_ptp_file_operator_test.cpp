#include "libqra-agent/source/ptp/qra_ptp_file_operator.h"

#include "libqra-agent/source/ptp/qra_ptp_manage.h"
#include "tests/unit/ptp/camera_fixture.h"

namespace {

class PtpFileOperator : public CameraFixture {
protected:
    PtpFileOperator() { add_camera(2); }

    CQRAPTPFileOperator file_;
};

/// As if a manager had filled its buffer.
class FilledFile : public CQRAPTPFileOperator {
public:
    explicit FilledFile(std::string content) : content_(std::move(content)) {
        m_szBuffer = content_.data();
        m_uSize = content_.size();
        m_bIsOpen = true;
    }

    bool is_cleared() const { return m_szBuffer == nullptr && m_uSize == 0 && m_uIndex == 0 && !m_bIsOpen; }

private:
    std::string content_;
};

TEST_F(PtpFileOperator, OpensAFileAndReadsNothing) {
    EXPECT_TRUE(file_.Open("ptp://1;2;12/5"));
    char buffer[8] = "";
    unsigned long done = 77;
    EXPECT_FALSE(file_.Read(buffer, sizeof buffer, &done));
    EXPECT_TRUE(log_.contains("Not Open or m_szBuffer is NULL"));
    EXPECT_EQ(done, 77U);
    EXPECT_EQ(fake_.bytes(), 0U);
}

TEST_F(PtpFileOperator, RefusesOtherTexts) {
    for (const char* uri : {"file:///x", "", "ptp:/1;2;3/4", "PTP://1;2;3/4", "12/5"}) {
        EXPECT_FALSE(file_.Open(uri)) << uri;
    }
    EXPECT_EQ(fake_.count(), 0);
}

TEST_F(PtpFileOperator, RefusesAUriWithoutAThirdPiece) {
    for (const char* uri : {"ptp://1;2", "ptp://", "ptp://1;2;", "ptp://;;1;;2;;", "ptp://12/5"}) {
        EXPECT_FALSE(file_.Open(uri)) << uri;
        EXPECT_TRUE(log_.contains(std::string("Please check params, strURI=") + uri)) << uri;
    }
    EXPECT_EQ(fake_.count(), 0);
}

TEST_F(PtpFileOperator, CutsTheUriAtSemicolonsAndSkipsEmptyPieces) {
    EXPECT_TRUE(file_.Open("ptp://;1;;002;12/5;rest"));
    EXPECT_TRUE(log_.contains("strFolderPath=12"));
    EXPECT_TRUE(log_.contains("strFileName=5"));
}

TEST_F(PtpFileOperator, TakesNumbersThatAreNoneAsZero) {
    EXPECT_FALSE(file_.Open("ptp://x;y;12/5"));
    EXPECT_TRUE(log_.contains("can not find camera"));
    fake_.devices[0].bus = 0;
    fake_.devices[0].number = 0;
    EXPECT_TRUE(file_.Open("ptp://x;y;12/5"));
}

TEST_F(PtpFileOperator, RefusesAPathWithoutASlash) {
    EXPECT_FALSE(file_.Open("ptp://1;2;5"));
    EXPECT_TRUE(log_.contains("Please check strFilePath=5"));
    EXPECT_TRUE(log_.contains("DownloadFileToBuffer fail"));
}

TEST_F(PtpFileOperator, RefusesToReadWithoutArguments) {
    char buffer[8] = "";
    unsigned long done = 0;
    EXPECT_FALSE(file_.Read(nullptr, 1, &done));
    EXPECT_FALSE(file_.Read(buffer, 0, &done));
    EXPECT_FALSE(file_.Read(buffer, 1, nullptr));
    EXPECT_EQ(log_.count("Please check params"), 3);
    EXPECT_FALSE(file_.Read(buffer, 1, &done));
    EXPECT_EQ(log_.count("Not Open or m_szBuffer is NULL"), 1);
}

TEST_F(PtpFileOperator, ReadsABufferPieceByPiece) {
    FilledFile file("hello");
    char buffer[8] = "";
    unsigned long done = 0;
    EXPECT_TRUE(file.Read(buffer, 3, &done));
    EXPECT_EQ(std::string(buffer, done), "hel");
    EXPECT_TRUE(log_.contains("total size:5; index:3; read size:3"));
    EXPECT_TRUE(file.Read(buffer, sizeof buffer, &done));
    EXPECT_EQ(std::string(buffer, done), "lo");
    EXPECT_TRUE(file.Read(buffer, sizeof buffer, &done));
    EXPECT_EQ(done, 0U);
}

TEST_F(PtpFileOperator, ForgetsEverythingWhenItIsClosed) {
    FilledFile file("hello");
    file.Close();
    EXPECT_TRUE(file.is_cleared());
}

}  // namespace
