#include "platform/nubelink/host/http_call.h"

#include <libsoup/soup.h>

#include "nubelink.h"
#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/worker.h"
#include "platform/support/preliminary_answers.h"

namespace nbl {

namespace {

constexpr size_t kPiece = 64 * 1024;
constexpr int kConnectionsToOneServer = 8;
constexpr int kConnections = 64;

}  // namespace

HttpClient::HttpClient()
    : session_(soup_session_new_with_options("max-conns", kConnections, "max-conns-per-host",
                                             kConnectionsToOneServer, "proxy-resolver", nullptr, "user-agent",
                                             "nubelink/1.0 UPnP/1.0 DLNADOC/1.50", nullptr)),
      turns_(std::make_unique<Turns>()) {}

HttpClient::~HttpClient() {
    soup_session_abort(session_.get());
}

bool is_web_address(const char* uri) {
    const glib::UriPtr parsed(g_uri_parse(uri, static_cast<GUriFlags>(SOUP_HTTP_URI_FLAGS), nullptr));
    if (parsed == nullptr) {
        return false;
    }
    const char* scheme = g_uri_get_scheme(parsed.get());
    const char* host = g_uri_get_host(parsed.get());
    return host != nullptr && *host != '\0' &&
           (g_strcmp0(scheme, "http") == 0 || g_strcmp0(scheme, "https") == 0);
}

int error_of(const GError* error) {
    const bool over_time = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
    return over_time ? NBL_ERROR_TIMEOUT : NBL_ERROR_NETWORK;
}

/// Shared by the call and by what libsoup has under way; the latter finds `done_` empty once the call has
/// ended.
class HttpCall::State : public std::enable_shared_from_this<State> {
public:
    State(const HttpClient& client, size_t largest_answer, Done done)
        : client_(client), largest_answer_(largest_answer), done_(std::move(done)) {}

    void start(const HttpQuestion& question);
    void cancel();

private:
    using Shared = std::shared_ptr<State>;
    void* hand_out() { return std::make_unique<Shared>(shared_from_this()).release(); }
    static Shared take_back(void* handed_out) {
        const std::unique_ptr<Shared> owner(static_cast<Shared*>(handed_out));
        return *owner;
    }
    static void on_sent(GObject* session, GAsyncResult* result, void* state);
    static void on_piece(GObject* stream, GAsyncResult* result, void* state);
    void read_on();
    void take_piece(GBytes* piece);
    void finish_in_turn();
    void finish(int error);

    const HttpClient& client_;  ///< not to be used once the call has ended
    const size_t largest_answer_;
    Done done_;
    HttpAnswer answer_;
    Timer deadline_;
    glib::ObjectPtr<SoupMessage> message_;
    glib::ObjectPtr<GInputStream> stream_;
    const glib::ObjectPtr<GCancellable> cancel_{g_cancellable_new()};
};

void HttpCall::State::start(const HttpQuestion& question) {
    if (!is_web_address(question.uri.c_str())) {
        deadline_.start(0, [this] { finish(NBL_ERROR_NETWORK); });
        return;
    }
    message_.reset(soup_message_new(question.method.c_str(), question.uri.c_str()));
    SoupMessageHeaders* headers = soup_message_get_request_headers(message_.get());
    for (const auto& [name, value] : question.headers) {
        soup_message_headers_append(headers, name.c_str(), value.c_str());
    }
    if (!question.body_type.empty()) {
        const glib::BytesPtr body(g_bytes_new(question.body.data(), question.body.size()));
        soup_message_set_request_body_from_bytes(message_.get(), question.body_type.c_str(), body.get());
    }
    soup_message_add_flags(message_.get(), SOUP_MESSAGE_NO_REDIRECT);
    soup_message_add_flags(message_.get(),
                           question.repeatable ? SOUP_MESSAGE_IDEMPOTENT : SOUP_MESSAGE_NEW_CONNECTION);
    support::cancel_where_never_answered(message_.get(), cancel_.get());
    deadline_.start(question.milliseconds, [this] { finish(NBL_ERROR_TIMEOUT); });
    soup_session_send_async(client_.session(), message_.get(), G_PRIORITY_DEFAULT, cancel_.get(),
                            &State::on_sent, hand_out());
}

void HttpCall::State::on_sent(GObject* session, GAsyncResult* result, void* handed_out) {
    const Shared state = take_back(handed_out);
    glib::ErrorOut error;
    state->stream_.reset(soup_session_send_finish(SOUP_SESSION(session), result, error));
    if (state->done_ == nullptr) {
        state->stream_.reset();
        return;
    }
    if (state->stream_ == nullptr) {
        state->finish(error_of(error.get()));
        return;
    }
    state->answer_.status = soup_message_get_status(state->message_.get());
    state->read_on();
}

void HttpCall::State::read_on() {
    g_input_stream_read_bytes_async(stream_.get(), kPiece, G_PRIORITY_DEFAULT, cancel_.get(),
                                    &State::on_piece, hand_out());
}

void HttpCall::State::on_piece(GObject* stream, GAsyncResult* result, void* handed_out) {
    const Shared state = take_back(handed_out);
    glib::ErrorOut error;
    const glib::BytesPtr piece(g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, error));
    if (state->done_ == nullptr) {
        state->stream_.reset();
        return;
    }
    if (piece == nullptr) {
        state->finish(error_of(error.get()));
        return;
    }
    state->take_piece(piece.get());
}

void HttpCall::State::take_piece(GBytes* piece) {
    size_t size = 0;
    const void* bytes = g_bytes_get_data(piece, &size);
    if (size == 0) {
        finish_in_turn();
        return;
    }
    if (answer_.body.size() + size > largest_answer_) {
        finish(NBL_ERROR_BAD_ANSWER);
        return;
    }
    answer_.body.append(static_cast<const char*>(bytes), size);
    read_on();
}

void HttpCall::State::finish_in_turn() {
    deadline_.stop();
    client_.turns().add([state = shared_from_this()] {
        if (state->done_ != nullptr) {
            state->finish(NBL_ERROR_NONE);
        }
    });
}

void HttpCall::State::finish(int error) {
    const Shared alive = shared_from_this();  // `done` may end the call.
    const Done done = std::move(done_);
    cancel();
    HttpAnswer answer = std::move(answer_);
    answer.error = error;
    done(std::move(answer));
}

void HttpCall::State::cancel() {
    done_ = nullptr;
    deadline_.stop();
    g_cancellable_cancel(cancel_.get());
}

HttpCall::HttpCall(const HttpClient& client, HttpQuestion question, Done done)
    : state_(std::make_shared<State>(client, question.largest_answer, std::move(done))) {
    state_->start(question);
}

HttpCall::~HttpCall() {
    state_->cancel();
}

}  // namespace nbl
