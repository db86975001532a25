#ifndef QRA_TESTS_UNIT_AGENT_FAKE_AGENT_H
#define QRA_TESTS_UNIT_AGENT_FAKE_AGENT_H

#include <string>
#include <vector>

#include "libqra-agent/agent/src/qra_agent_base.h"

/// An agent that refuses everything and writes down when it goes.
class FakeAgent : public IQRAAgentBase {
public:
    explicit FakeAgent(std::vector<std::string>* journal = nullptr) : journal_(journal) {}
    ~FakeAgent() override {
        if (journal_ != nullptr) {
            journal_->push_back("agent destroyed");
        }
    }

    using E = qra_error_code_e;
    using H = CQRAAgentHandle;
    E RequestList(qra_general_s*, on_list_complete_cb, void*, H**) override { return no(); }
    E CancelRequestList(H*) override { return no(); }
    E RequestDetail(H*, qra_detail_s*, void*, on_detail_complete_cb) override { return no(); }
    E CancelDetailRequest(H*) override { return no(); }
    E SetNavigation(H*, qra_navigation_e) override { return no(); }
    E GetNavigation(H*, qra_navigation_e*) override { return no(); }
    E MoveToNext(H*) override { return no(); }
    E MoveToPrevious(H*) override { return no(); }
    E MoveToIndex(H*, int) override { return no(); }
    E GetItemCount(H*, int*) override { return no(); }
    E GetItemCount(H*, qra_media_type_e, int*) override { return no(); }
    E GetItemValue(H*, const char*, char**) override { return no(); }
    E GetItemValue(H*, const char*, int*) override { return no(); }
    E GetItemValue(H*, const char*, bool*) override { return no(); }
    E GetItemValue(H*, const char*, double*) override { return no(); }
    E GetItemValue(H*, const char*, long*) override { return no(); }
    E GetItemValue(H*, const char*, unsigned long long*) override { return no(); }
    E SetItemValue(H*, const char*, long) override { return no(); }
    E SetItemValue(H*, const char*, int) override { return no(); }
    E SetItemValue(H*, const char*, char*) override { return no(); }
    E DeselectAll(H*) override { return no(); }
    E Disconnect(H*) override { return no(); }
    E GetSelectedState(H*, int, bool*) override { return no(); }
    E GetSelectionCount(H*, int*) override { return no(); }
    E ToggleSelect(H*, int) override { return no(); }
    E UploadComment(H*, qra_comment_s*, int, void*, on_detail_complete_cb) override { return no(); }
    E SetLike(H*, qra_like_s*, int, void*, on_detail_complete_cb) override { return no(); }
    E PreparePlayData(H*, char**) override { return no(); }
    E SetPageStyle(H*, qra_page_style_s*) override { return no(); }
    E GetGroupCount(H*, int*) override { return no(); }
    E GetItemBookMark(H*, on_get_dlna_bookmark_cb, void*) override { return no(); }
    E SetExpandMode(H*, int, bool) override { return no(); }
    E GetItem(H*, int, char**) override { return no(); }
    E SelectGroup(H*, int) override { return no(); }
    E DeselectGroup(H*, int) override { return no(); }
    E GetPageIndex(H*, char*, int*) override { return no(); }
    E GetRatingInfo(H*, char**) override { return no(); }
    E GetStorageId(char*, char**) override { return no(); }

private:
    static E no() { return QRA_ERROR_NOT_SUPPORTED; }

    std::vector<std::string>* journal_;
};

#endif
