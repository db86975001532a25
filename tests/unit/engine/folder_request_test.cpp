#include "engine/src/folder_request.h"

#include <gtest/gtest.h>

using engine::FolderRequest;
using engine::parse_folder_request;

namespace {

std::string error_of(const std::string& text) {
    std::string error;
    EXPECT_FALSE(parse_folder_request(text, error)) << text;
    return error;
}

std::string find_text(const std::string& key) {
    return R"({"OPERATION_TYPE":1,"FOLDER_PATH":")" + key + "\"}";
}

TEST(FolderRequest, ReadsAFind) {
    std::string error;
    const auto request = parse_folder_request(
        "{\n   \"FOLDER_PATH\" : \"/media/USBDrive1/a b/id-1\",\n"
        "   \"OPERATION_TYPE\" : 1\n}\n",
        error);
    ASSERT_TRUE(request) << error;
    EXPECT_EQ(FolderRequest::Operation::kFind, request->operation);
    EXPECT_EQ("/media/USBDrive1/a b", request->path);
    EXPECT_EQ("id-1", request->storage_id);
    EXPECT_EQ("", request->folder_id);
}

TEST(FolderRequest, ReadsAnAdd) {
    std::string error;
    const auto request =
        parse_folder_request(R"({"OPERATION_TYPE":0,"FOLDER_PATH":"/m/\u00e4/s","FOLDER_ID":"12"})", error);
    ASSERT_TRUE(request) << error;
    EXPECT_EQ(FolderRequest::Operation::kAdd, request->operation);
    EXPECT_EQ("/m/ä", request->path);
    EXPECT_EQ("12", request->folder_id);
}

TEST(FolderRequest, RefusesWhatIsNoJsonObject) {
    for (const std::string text : {"", "x", "null", "[]", "1", "{", "{}}", "{\"OPERATION_TYPE\":1,}"}) {
        EXPECT_EQ("the request is no JSON object", error_of(text)) << text;
    }
}

TEST(FolderRequest, RefusesDeepNesting) {
    EXPECT_EQ("the request is no JSON object", error_of(std::string(20000, '[')));
    EXPECT_EQ("the request is no JSON object", error_of(R"({"OPERATION_TYPE":)" + std::string(9, '[')));
}

TEST(FolderRequest, RefusesATextLongerThanAnyHonestOne) {
    EXPECT_EQ("the request is no JSON object", error_of(find_text("/" + std::string(1 << 20, 'a') + "/s")));
}

TEST(FolderRequest, RefusesAnUnknownOperation) {
    for (const std::string type : {"2", "-1", "\"1\"", "1.5", "true", "null", "{}", "99999999999999999999"}) {
        EXPECT_EQ("OPERATION_TYPE is neither 0 nor 1",
                  error_of("{\"OPERATION_TYPE\":" + type + R"(,"FOLDER_PATH":"/m/s"})"));
    }
    EXPECT_EQ("OPERATION_TYPE is neither 0 nor 1", error_of("{}"));
}

TEST(FolderRequest, RefusesAKeyThatNamesNoFolderAndStorage) {
    const std::string reason = "FOLDER_PATH is not an absolute path, a slash and a storage id";
    const std::string too_long_path = "/" + std::string(4095, 'a') + "/s";
    const std::string too_long_storage = "/m/" + std::string(257, 's');
    for (const std::string& key :
         {std::string(), std::string("m"), std::string("m/s"), std::string("/s"), std::string("/m/"),
          std::string("/m\\u0000/s"), too_long_path, too_long_storage}) {
        EXPECT_EQ(reason, error_of(find_text(key))) << key;
    }
    EXPECT_EQ(reason, error_of(R"({"OPERATION_TYPE":1})"));
    EXPECT_EQ(reason, error_of(R"({"OPERATION_TYPE":1,"FOLDER_PATH":7})"));
}

TEST(FolderRequest, RefusesAnAddWithoutAnId) {
    for (const std::string id : {"\"\"", "12", "null", "\"a\\u0000b\"", "[]"}) {
        EXPECT_EQ("FOLDER_ID is not the id of a folder",
                  error_of(R"({"OPERATION_TYPE":0,"FOLDER_PATH":"/m/s","FOLDER_ID":)" + id + "}"));
    }
    EXPECT_EQ("FOLDER_ID is not the id of a folder",
              error_of(R"({"OPERATION_TYPE":0,"FOLDER_PATH":"/m/s"})"));
}

}  // namespace
