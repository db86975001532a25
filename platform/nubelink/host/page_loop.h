#ifndef QRA_NUBELINK_PAGE_LOOP_H
#define QRA_NUBELINK_PAGE_LOOP_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/nubelink/host/item_record.h"
#include "platform/nubelink/host/service.h"
#include "platform/nubelink/host/soap_call.h"

namespace nbl {

/// What pages are asked of: a folder's children, one object, or what a search finds.
struct PageSource {
    enum class Kind { kChildren, kObject, kSearch };
    Kind kind = Kind::kChildren;
    std::string id;        ///< of the folder, the object, or the folder that is searched
    std::string criteria;  ///< of a search
};

/// One answer of a server.
struct Page {
    int error = 0;               ///< an nbl_error_e; items are there only without one
    std::vector<ItemPtr> items;  ///< no more than were asked for
    int64_t total = 0;           ///< as the server says; 0 for unknown
    int64_t returned = 0;        ///< how many objects the server says it gave
    bool is_whole = true;        ///< its DIDL was well-formed
    size_t bytes = 0;            ///< of the whole answer, as it came
};

/// Whether a page's error is that nobody answered, or that nobody was asked.
bool is_unanswered(int error);

/**
 * One page of a server. `done` is called once on the worker, never from inside the constructor; the end of
 * the call before that calls it off. An answer in which nothing can be understood is NBL_ERROR_BAD_ANSWER,
 * any answer while the items of the process take too much memory NBL_ERROR_OUT_OF_MEMORY.
 */
class PageCall {
public:
    using Done = std::function<void(Page)>;
    /// `provider` lives on; the server need not be there: that is NBL_ERROR_DEVICE_GONE.
    PageCall(Session& session, nbl_provider_t provider, const PageSource& source, int64_t start,
             int64_t count, Done done);

private:
    Timer gone_;
    std::optional<SoapCall> call_;
};

/**
 * Asks for pages one after the other, until what is wanted is there or the server has no more. A server may
 * give fewer objects than it is asked for, more, none with more to come, the same page again, and totals that
 * are wrong or change: the loop ends, with what there is. A server whose answers are larger than their
 * objects can be is not asked on: that is NBL_ERROR_BAD_ANSWER.
 *
 * Some servers give the size of a page as the total. Where a first page is all that there is by its total,
 * and the server has never told a total that was larger than a page, the loop asks once more: an error, or no
 * answer for as long as kDoubt, is the end then.
 *
 * Lives on the worker's thread. `on_page` and `on_end` may end the loop; the end comes once, and nothing
 * after it.
 */
class PageLoop {
public:
    /// So many objects are taken of one source at most.
    static constexpr int64_t kMostItems = 200'000;
    /// So many bytes are read of one source at most: those of an answer, and of each object.
    static constexpr size_t kMostBytes = HttpQuestion::kLargestAnswer;
    static constexpr size_t kMostBytesOfObject = 16 * 1024;
    static constexpr unsigned kDoubt = 3000;  ///< milliseconds

    struct Range {
        int64_t start = 0;
        int64_t most = kMostItems;  ///< objects in all
        int64_t page = 200;         ///< objects to ask for at once
        int64_t expected = 0;       ///< objects there are, as is known otherwise; 0 for not known
    };
    /// `place` is that of the first item; `total` is what the server says.
    using OnPage = std::function<void(std::vector<ItemPtr> items, int64_t place, int64_t total)>;
    using OnEnd = std::function<void(int error)>;

    PageLoop(Session& session, nbl_provider_t provider, PageSource source, Range range, OnPage on_page,
             OnEnd on_end);

private:
    void ask();
    void ask_in_doubt();
    void take(Page page);
    bool is_total_of_all(const Page& page) const;

    Session& session_;
    nbl_provider_t const provider_;
    const PageSource source_;
    const Range range_;
    const OnPage on_page_;
    const OnEnd on_end_;
    int64_t asked_ = 0;  ///< objects in the question under way
    int64_t got_ = 0;    ///< places gone through since the start
    size_t read_ = 0;    ///< bytes
    std::set<uint64_t> seen_;
    std::unique_ptr<PageCall> call_;
    bool is_in_doubt_ = false;  ///< whether the question under way has an answer
    Timer doubt_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace nbl

#endif
