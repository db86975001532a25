#ifndef QRA_TESTS_DLNA_ROUNDS_H
#define QRA_TESTS_DLNA_ROUNDS_H

#include <glib.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"
#include "tests/fakes/process_resources.h"

/// Which actions the server holds back, and so the phase that a round is in when it ends.
inline const std::vector<std::vector<std::string>> kPhases = {
    {},
    {"Browse.hold", "Search.hold", "X_GetFeatureList.hold", "GetSystemUpdateID.hold", "GET.hold",
     "CreateObject.hold"},
    {"GET.silent", "POST.hold", "GetSearchCapabilities.hold"},
    {"Browse.cut", "Search.cut", "GET.cut", "POST.cut"},
};

struct RoundsTest : HomeNetworkTest {
    void start() {
        server = std::make_unique<MediaServer>();
        server->generate("p", "image", 20);
        server->tell({"size", "p-0", "100000"});
        upload = directory.write("upload.jpg", std::string(50'000, 'u'));
        provider = wait_for();
        ASSERT_NE(provider, nullptr);
    }
    void misbehave(int round) {
        server->clear();
        for (const std::string& fault : kPhases[static_cast<size_t>(round) % kPhases.size()]) {
            server->set(fault, "100");
        }
    }
    int start_download(int round, TransferReply& reply) {
        return nbl_provider_download(server->url("/res/p-0").c_str(), "image/jpeg",
                                     directory.path("file" + std::to_string(round % 10)).c_str(), 10,
                                     &TransferReply::on_download, &reply, &reply.token);
    }
    int start_upload(TransferReply& reply) {
        nbl_item_t item = nullptr;
        nbl_item_get_local_content(upload.c_str(), "image/jpeg", &item);
        const int result =
            nbl_provider_receive(provider, item, &TransferReply::kUpload, &reply, &reply.token);
        nbl_item_free(item);
        return result;
    }
    /// One of everything; ended by `end` at whatever stage it is then. All of it is answered, once.
    template <typename End>
    void round(int number, End end) {
        misbehave(number);
        const char* phase = number % 3 == 1 ? "Browse" : "CreateObject";
        const long seen = server->count(phase);
        Reply children;
        Reply item;
        Reply found;
        Reply told;
        Reply view;
        TransferReply download;
        TransferReply sent;
        browse(provider, "p", 0, 10, children);
        browse_item(provider, "p", item);
        search(provider, "A", {NBL_ITEM_TYPE_IMAGE}, 5, found);
        features(provider, told);
        browse(provider, "I_N", 0, 200, view);
        EXPECT_EQ(start_download(number, download), NBL_ERROR_NONE);
        EXPECT_EQ(start_upload(sent), NBL_ERROR_NONE);
        // Some rounds are ended at once, others amid their work.
        if (number % 3 != 0) {
            EXPECT_TRUE(comes_true([&] {
                return server->count(phase) > seen ||
                       (number % 3 == 1 ? children.has_ended() : sent.has_ended());
            })) << phase;
        }
        end(std::vector<int>{children.token, item.token, found.token, told.token, view.token, download.token,
                             sent.token});
        server->clear();
        server->release();
    }
    void cancel_rounds(int first, int count) {
        for (int i = first; i < first + count; ++i) {
            round(i, [this](const std::vector<int>& tokens) {
                for (size_t at = 0; at < 5; ++at) {
                    EXPECT_EQ(nbl_provider_cancel_async_action(tokens[at]), NBL_ERROR_NONE);
                }
                EXPECT_EQ(nbl_provider_cancel_download(tokens[5]), NBL_ERROR_NONE);
                EXPECT_EQ(nbl_provider_cancel_receive(provider, tokens[6], nullptr, nullptr), NBL_ERROR_NONE);
            });
        }
    }
    void leave_rounds(int first, int count) {
        for (int i = first; i < first + count; ++i) {
            round(i, [this](const std::vector<int>&) { disconnect(); });
            connect();
            ASSERT_EQ(wait_for(), provider);
        }
    }
    /// Rounds that the server ends, with a goodbye.
    void lose_rounds(int first, int count) {
        for (int i = first; i < first + count; ++i) {
            round(i, [this](const std::vector<int>&) { server->tell({"goodbye"}); });
            ASSERT_TRUE(wait_until_gone());
            server->tell({"hello"});
            ASSERT_EQ(wait_for(), provider);
        }
    }
    void expect_a_working_service() {
        Reply reply;
        browse(provider, "p", 0, 200, reply);
        EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
        EXPECT_THAT(reply.items, testing::SizeIs(20));
    }
    /// How many rounds end in each way.
    struct Rounds {
        int cancels;
        int leaves;
        int losses;
    };
    /// `first` fill what is filled once, a pool or a cache; `more` may leave nothing at all.
    void expect_nothing_left(const Rounds& first, const Rounds& more) {
        run({0, 0, 0}, first);
        disconnect();
        const ProcessResources before(loop);
        connect();
        ASSERT_EQ(wait_for(), provider);
        run(first, more);
        disconnect();
        EXPECT_TRUE(settles_at(before, loop)) << ProcessResources(loop) << "; at first " << before;
        connect();
        ASSERT_EQ(wait_for(), provider);
        expect_a_working_service();
    }
    void run(const Rounds& from, const Rounds& count) {
        cancel_rounds(from.cancels, count.cancels);
        leave_rounds(from.leaves, count.leaves);
        lose_rounds(from.losses, count.losses);
    }

    std::unique_ptr<MediaServer> server;
    nbl_provider_t provider = nullptr;
    std::string upload;
};

#endif
