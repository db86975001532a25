#ifndef QRA_NUBELINK_ORDERED_VIEWS_H
#define QRA_NUBELINK_ORDERED_VIEWS_H

#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "platform/nubelink/host/service.h"
#include "platform/nubelink/host/view_tree.h"

namespace nbl {

/**
 * The ordered views of servers that can search and have no such views themselves. All items of a kind are
 * searched for once, and kept until the server's update id has changed or this ends.
 *
 * Lives on the worker's thread, as long as the session.
 */
class OrderedViews {
    class Pass;

public:
    /// One question for a view. Its end calls it off.
    class Question {
    public:
        /// The view, valid during the call, or null and an nbl_error_e.
        using Done = std::function<void(int error, const ViewTree* tree)>;
        /// Called each time when a part of the items has come.
        using Progress = std::function<void()>;

        Question(OrderedViews& views, nbl_provider_t provider, const View& view, bool fresh, Done done,
                 Progress progress);
        ~Question();
        Question(const Question&) = delete;
        Question& operator=(const Question&) = delete;

    private:
        friend class Pass;
        const std::shared_ptr<Pass> pass_;
        const View& view_;
        const Done done_;
        const Progress progress_;
    };

    explicit OrderedViews(Session& session);
    ~OrderedViews();
    OrderedViews(const OrderedViews&) = delete;
    OrderedViews& operator=(const OrderedViews&) = delete;

    /**
     * Asks for a view. `done` is called once, never from inside this call, and may end the question.
     *
     * @param fresh  whether the server is asked if something has changed; else what is kept will do
     */
    std::unique_ptr<Question> ask(nbl_provider_t provider, const View& view, bool fresh, Question::Done done,
                                  Question::Progress progress);
    /// Gives back the items that nobody waits for: who asks for them again has them searched again.
    void forget_unused();

private:
    std::shared_ptr<Pass> pass(nbl_provider_t provider, int item_type);

    Session& session_;
    std::map<std::pair<nbl_provider_t, int>, std::shared_ptr<Pass>> passes_;
};

}  // namespace nbl

#endif
