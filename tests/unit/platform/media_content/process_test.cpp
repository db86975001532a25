#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

#include "tests/unit/platform/media_content/contract.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

/// Several processes on one database.
class Processes : public TemporaryDirectories {
protected:
    /// Runs the work in a process of its own, which ends with 0 if the work returns true.
    static pid_t start(const std::function<bool()>& work) {
        const pid_t child = fork();
        if (child == 0) {
            bool good = false;
            try {
                good = work();
            } catch (const std::exception& error) {
                std::fprintf(stderr, "%s\n", error.what());
            }
            _exit(good ? 0 : 1);
        }
        return child;
    }

    static int status_of(pid_t child) {
        int status = -1;
        waitpid(child, &status, 0);
        return status;
    }

    static constexpr int kBatch = 50;

    /// Writes that many batches of rows. @param tell where a byte goes after each batch, if there is one
    static bool write_batches(int64_t storage, const std::string& folder_path, int batches, int tell = -1) {
        connect_database();
        const auto database = connected_database();
        for (int batch = 0; batch < batches; ++batch) {
            MediaWriter writer(*database);
            const int64_t folder = writer.ensure_folder(storage, folder_path, 0);
            for (int i = 0; i < kBatch; ++i) {
                const std::string name =
                    std::to_string(getpid()) + "-" + std::to_string(batch * kBatch + i) + ".jpg";
                writer.put_file(folder, FileFacts{name, 1, 0}, MediaRecord{});
            }
            writer.commit();
            if (tell >= 0 && write(tell, "", 1) != 1) {
                return false;
            }
        }
        return true;
    }

    int64_t attach_stick() {
        Database database(database_path());
        return attach(database, directory("stick"), "").storage.key;
    }

    static std::string first_value(const std::string& sql) {
        SqliteConnection connection(database_path(), SqliteConnection::Access::kRead);
        Query query(connection, sql);
        return query.step() ? std::string(query.text(0)) : "(no row)";
    }
};

TEST_F(Processes, MayRaceForTheFirstUse) {
    for (int round = 0; round < 10; ++round) {
        std::filesystem::remove_all(root() + "/data");
        std::vector<pid_t> children;
        for (int i = 0; i < 4; ++i) {
            children.push_back(
                start([] { return media_content_connect() == 0 && media_names(nullptr).empty(); }));
        }
        for (const pid_t child : children) {
            EXPECT_EQ(status_of(child), 0);
        }
    }
}

TEST_F(Processes, MayRaceToAttachTheSameFolder) {
    directory("stick");
    attach_stick();
    std::vector<pid_t> children;
    for (int i = 0; i < 4; ++i) {
        children.push_back(start([&] {
            connect_database();
            return attach(*connected_database(), root() + "/stick", "").storage.number == 1 &&
                   attach(*connected_database(), root() + "/stick", "USBDrive7").storage.number == 1;
        }));
    }
    for (const pid_t child : children) {
        EXPECT_EQ(status_of(child), 0);
    }
    EXPECT_EQ(first_value("SELECT count(*) FROM storage"), "1");
}

TEST_F(Processes, MayWriteAtTheSameTime) {
    const int64_t storage = attach_stick();
    std::vector<pid_t> children;
    for (int i = 0; i < 3; ++i) {
        children.push_back(start([&] { return write_batches(storage, "/same", 10); }));
    }
    for (const pid_t child : children) {
        EXPECT_EQ(status_of(child), 0);
    }
    EXPECT_EQ(first_value("SELECT count(*) FROM media"), std::to_string(3 * 10 * kBatch));
    EXPECT_EQ(first_value("SELECT count(*) FROM folder"), "2");
}

TEST_F(Processes, ThatAreKilledLeaveWholeBatches) {
    const int64_t storage = attach_stick();
    for (int round = 0; round < 20; ++round) {
        int told[2];
        ASSERT_EQ(pipe(told), 0);
        const pid_t child = start([&] { return write_batches(storage, "/killed", 1 << 20, told[1]); });
        char byte = 0;
        for (int batch = 0; batch <= round % 5; ++batch) {
            ASSERT_EQ(read(told[0], &byte, 1), 1);
        }
        kill(child, SIGKILL);  // it is writing the next batch, or about to
        EXPECT_TRUE(WIFSIGNALED(status_of(child)));
        close(told[0]);
        close(told[1]);
        EXPECT_EQ(first_value("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(std::stoi(first_value("SELECT count(*) FROM media")) % kBatch, 0);
    }
    EXPECT_GE(std::stoi(first_value("SELECT count(*) FROM media")), 20 * kBatch);
}

}  // namespace
}  // namespace media_content
