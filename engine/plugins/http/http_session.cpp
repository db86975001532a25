#include "engine/plugins/http/http_session.h"

#include <libsoup/soup.h>

#include <array>
#include <optional>
#include <utility>

#include "accounts.h"
#include "engine/plugins/http/http_reason.h"
#include "engine/src/timer.h"
#include "platform/support/glib_ptr.h"
#include "platform/support/preliminary_answers.h"

namespace engine {

namespace {

using SoupSessionPtr = glib::ObjectPtr<SoupSession>;
using MessagePtr = glib::ObjectPtr<SoupMessage>;
using StreamPtr = glib::ObjectPtr<GInputStream>;
using CancellablePtr = glib::ObjectPtr<GCancellable>;

constexpr size_t kPieceSize = 64 * 1024;
constexpr int kMostConnections = 4;
constexpr int kPiecesInARound = 16;
constexpr auto kUriFlags = static_cast<GUriFlags>(SOUP_HTTP_URI_FLAGS);

/// Null for all but an address of some server that an account may have.
glib::UriPtr parse_address(const std::string& address) {
    glib::UriPtr uri(g_uri_parse(address.c_str(), kUriFlags, nullptr));
    const bool good = uri != nullptr && account_knows_scheme(address.c_str()) &&
                      g_uri_get_host(uri.get()) != nullptr && *g_uri_get_host(uri.get()) != '\0';
    return good ? std::move(uri) : nullptr;
}

bool is_safe(GUri* uri) {
    return std::string_view(g_uri_get_scheme(uri)) == "https";
}

int port_of(GUri* uri) {
    const int port = g_uri_get_port(uri);
    return port > 0 ? port : is_safe(uri) ? 443 : 80;
}

bool same_server(GUri* one, GUri* other) {
    return is_safe(one) == is_safe(other) && port_of(one) == port_of(other) &&
           g_ascii_strcasecmp(g_uri_get_host(one), g_uri_get_host(other)) == 0;
}

/// How a server is called to people: its host, and its port where it has one of its own.
std::string name_of(GUri* uri) {
    const std::string host = g_uri_get_host(uri);
    const int port = g_uri_get_port(uri);
    return port > 0 && port != (is_safe(uri) ? 443 : 80) ? host + ":" + std::to_string(port) : host;
}

SoupSessionPtr new_soup_session() {
    return SoupSessionPtr(soup_session_new_with_options("max-conns-per-host", kMostConnections, "user-agent",
                                                        "qra-content-engine", nullptr));
}

bool is_redirect(unsigned status) {
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

}  // namespace

struct HttpSession::Parts {
    SoupSessionPtr soup;
    SoupSessionPtr beside;  ///< for questions that wait for no other one's connection
    HttpLimits limits;
    glib::UriPtr address;  ///< null if it is none
    std::string user;
    std::string password;

    bool basic_wanted = false;  ///< the account's server asked for the "Basic" scheme

    bool has_credentials() const { return !user.empty() || !password.empty(); }
};

/**
 * A transfer, shared with the calls of the HTTP library that are under way: their ends come after a cancel
 * too. Without a sink it is over.
 */
class HttpTransfer::State : public std::enable_shared_from_this<HttpTransfer::State> {
public:
    State(std::shared_ptr<HttpSession::Parts> parts, HttpQuestion question, HttpSink& sink)
        : parts_(std::move(parts)),
          question_(std::move(question)),
          sink_(&sink),
          cancellable_(g_cancellable_new()) {}

    void start();
    void cancel();
    void hold();
    void go_on();

private:
    using Holder = std::shared_ptr<State>;
    template <void (State::*finish)(GObject*, GAsyncResult*)>
    static void on_ready(GObject* source, GAsyncResult* result, void* holder);

    void send();
    MessagePtr new_message();
    void sent(GObject* source, GAsyncResult* result);
    void follow(const char* location);
    void read_on();
    void piece_read(GObject* source, GAsyncResult* result);
    gssize read_what_is_there(GError** failure);
    void take_piece(size_t size);
    void fail(const std::string& reason);
    void fail_late();
    void expect_more();

    static void set_body(SoupMessage* message, void* question);
    static gboolean on_authenticate(SoupMessage* message, SoupAuth* auth, gboolean again, void* self);
    bool may_know_password() const;
    void add_basic(SoupMessage* message);

    const std::shared_ptr<HttpSession::Parts> parts_;
    const HttpQuestion question_;
    HttpSink* sink_;
    const CancellablePtr cancellable_;
    glib::UriPtr uri_;
    MessagePtr message_;
    StreamPtr stream_;
    std::array<char, kPieceSize> piece_;
    uint64_t bytes_ = 0;
    int redirects_ = 0;
    bool basic_asked_ = false;
    bool basic_sent_ = false;
    bool held_ = false;
    bool reads_later_ = false;  ///< go_on() has to begin the next read
    Timer deadline_;
    // A busy machine is no silent server: what has come in is looked at first.
    Timer silence_{G_PRIORITY_DEFAULT_IDLE};
};

void HttpTransfer::State::start() {
    uri_ = parse_address(question_.url);
    if (!uri_) {
        deadline_.start(0, [this] { fail("the address is none of a web server"); });
        return;
    }
    deadline_.start(parts_->limits.milliseconds_in_all, [this] { fail_late(); });
    expect_more();
    send();
}

void HttpTransfer::State::expect_more() {
    silence_.start(parts_->limits.milliseconds_of_silence, [this] { fail_late(); });
}

void HttpTransfer::State::fail_late() {
    fail(name_of(uri_.get()) + " did not answer in time");
}

void HttpTransfer::State::cancel() {
    sink_ = nullptr;
    deadline_.stop();
    silence_.stop();
    g_cancellable_cancel(cancellable_.get());
}

void HttpTransfer::State::hold() {
    held_ = true;
    silence_.stop();
}

void HttpTransfer::State::go_on() {
    held_ = false;
    if (sink_ && std::exchange(reads_later_, false)) {
        expect_more();
        read_on();
    }
}

/// The transfer is over before its sink hears of it, so that it may do what it likes.
void HttpTransfer::State::fail(const std::string& reason) {
    const Holder keep = shared_from_this();
    HttpSink* sink = sink_;
    cancel();
    sink->on_failure(reason);
}

template <void (HttpTransfer::State::*finish)(GObject*, GAsyncResult*)>
void HttpTransfer::State::on_ready(GObject* source, GAsyncResult* result, void* holder) {
    const std::unique_ptr<Holder> state(static_cast<Holder*>(holder));
    ((**state).*finish)(source, result);
}

gboolean HttpTransfer::State::on_authenticate(SoupMessage*, SoupAuth* auth, gboolean again, void* self) {
    auto* state = static_cast<State*>(self);
    const HttpSession::Parts& parts = *state->parts_;
    if (again || soup_auth_is_for_proxy(auth) || !state->may_know_password()) {
        return FALSE;
    }
    if (std::string_view(soup_auth_get_scheme_name(auth)) == "Basic") {
        // The library would write what is not ASCII in Latin-1; servers want UTF-8.
        state->basic_asked_ = true;
        return FALSE;
    }
    soup_auth_authenticate(auth, parts.user.c_str(), parts.password.c_str());
    return TRUE;
}

bool HttpTransfer::State::may_know_password() const {
    return parts_->has_credentials() && parts_->address && same_server(uri_.get(), parts_->address.get());
}

/// Once the server is known to want it, it gets the password without asking.
void HttpTransfer::State::add_basic(SoupMessage* message) {
    basic_sent_ = true;
    const std::string plain = parts_->user + ":" + parts_->password;
    const glib::TextPtr encoded(g_base64_encode(reinterpret_cast<const guchar*>(plain.data()), plain.size()));
    soup_message_headers_replace(soup_message_get_request_headers(message), "Authorization",
                                 ("Basic " + std::string(encoded.get())).c_str());
}

void HttpTransfer::State::set_body(SoupMessage* message, void* question_of_transfer) {
    const auto& question = *static_cast<const HttpQuestion*>(question_of_transfer);
    if (!question.body.empty()) {
        const glib::BytesPtr body(g_bytes_new(question.body.data(), question.body.size()));
        soup_message_set_request_body_from_bytes(message, question.body_type.c_str(), body.get());
    }
}

MessagePtr HttpTransfer::State::new_message() {
    MessagePtr message(soup_message_new_from_uri(question_.method.c_str(), uri_.get()));
    soup_message_add_flags(message.get(), SOUP_MESSAGE_NO_REDIRECT);
    SoupMessageHeaders* headers = soup_message_get_request_headers(message.get());
    for (const auto& [name, value] : question_.headers) {
        soup_message_headers_replace(headers, name.c_str(), value.c_str());
    }
    set_body(message.get(), const_cast<HttpQuestion*>(&question_));
    // A message that is sent again, after the server asked for a password, has lost its body.
    g_signal_connect(message.get(), "restarted", G_CALLBACK(set_body), const_cast<HttpQuestion*>(&question_));
    if (parts_->basic_wanted && may_know_password()) {
        add_basic(message.get());
    }
    g_signal_connect(message.get(), "authenticate", G_CALLBACK(on_authenticate), this);
    support::cancel_where_never_answered(message.get(), cancellable_.get());
    return message;
}

void HttpTransfer::State::send() {
    message_ = new_message();
    SoupSession* soup = (question_.beside ? parts_->beside : parts_->soup).get();
    soup_session_send_async(soup, message_.get(), G_PRIORITY_DEFAULT, cancellable_.get(),
                            on_ready<&State::sent>, std::make_unique<Holder>(shared_from_this()).release());
}

void HttpTransfer::State::sent(GObject* source, GAsyncResult* result) {
    GError* failure = nullptr;
    stream_.reset(soup_session_send_finish(SOUP_SESSION(source), result, &failure));
    const glib::ErrorPtr error(failure);
    if (!sink_) {
        return;
    }
    const std::string server = name_of(uri_.get());
    if (error) {
        const GTlsCertificateFlags flaws = soup_message_get_tls_peer_certificate_errors(message_.get());
        const bool distrusted = error->domain == G_TLS_ERROR && flaws != 0;
        fail(distrusted ? reason_of_certificate(server, flaws) : reason_of_error(server, *error));
        return;
    }
    const unsigned status = soup_message_get_status(message_.get());
    if (status == 401 && basic_asked_ && !basic_sent_) {
        parts_->basic_wanted = true;
        stream_.reset();
        send();
    } else if (is_redirect(status)) {
        follow(soup_message_headers_get_one(soup_message_get_response_headers(message_.get()), "Location"));
    } else if (status == question_.wanted_status) {
        sink_->on_begin(glib::TextPtr(g_uri_to_string_partial(uri_.get(), G_URI_HIDE_USERINFO)).get());
        read_on();
    } else if (status >= 200 && status < 300) {
        fail(server + " " + question_.wrong_status);
    } else {
        fail(reason_of_status(server, status, parts_->has_credentials()));
    }
}

void HttpTransfer::State::follow(const char* location) {
    const std::string server = name_of(uri_.get());
    if (++redirects_ > parts_->limits.redirects) {
        fail(server + " sends us round in circles");
        return;
    }
    const glib::UriPtr target(location ? g_uri_parse_relative(uri_.get(), location, kUriFlags, nullptr)
                                       : nullptr);
    glib::UriPtr next =
        target
            ? parse_address(glib::TextPtr(g_uri_to_string_partial(target.get(), G_URI_HIDE_USERINFO)).get())
            : nullptr;
    if (!next) {
        fail(server + " sends us to an address that is none");
        return;
    }
    if (parts_->has_credentials() && is_safe(uri_.get()) && !is_safe(next.get())) {
        fail(server +
             " sends us from a safe address to an unsafe one (http), where the password is not safe");
        return;
    }
    stream_.reset();
    uri_ = std::move(next);
    expect_more();
    send();
}

void HttpTransfer::State::read_on() {
    reads_later_ = held_;
    if (!sink_ || held_) {
        return;
    }
    g_input_stream_read_async(stream_.get(), piece_.data(), piece_.size(), G_PRIORITY_DEFAULT,
                              cancellable_.get(), on_ready<&State::piece_read>,
                              std::make_unique<Holder>(shared_from_this()).release());
}

void HttpTransfer::State::piece_read(GObject* source, GAsyncResult* result) {
    GError* failure = nullptr;
    gssize size = g_input_stream_read_finish(G_INPUT_STREAM(source), result, &failure);
    // What is there already is taken at once: each round of the main context costs the wait for a processor.
    for (int more = 0; more < kPiecesInARound && size > 0 && sink_; ++more) {
        take_piece(static_cast<size_t>(size));
        size = sink_ && !held_ ? read_what_is_there(&failure) : -1;
    }
    const glib::ErrorPtr error(failure);
    if (!sink_) {
        return;
    }
    if (error) {
        fail(reason_of_error(name_of(uri_.get()), *error));
        return;
    }
    if (size == 0) {
        HttpSink* sink = sink_;
        cancel();
        sink->on_end();
        return;
    }
    if (size > 0) {
        take_piece(static_cast<size_t>(size));
    }
    read_on();
}

/// Zero only at the end; negative if there is nothing yet, or with an error.
gssize HttpTransfer::State::read_what_is_there(GError** failure) {
    if (!G_IS_POLLABLE_INPUT_STREAM(stream_.get()) ||
        !g_pollable_input_stream_can_poll(G_POLLABLE_INPUT_STREAM(stream_.get()))) {
        return -1;
    }
    const gssize size = g_pollable_input_stream_read_nonblocking(
        G_POLLABLE_INPUT_STREAM(stream_.get()), piece_.data(), piece_.size(), cancellable_.get(), failure);
    if (g_error_matches(*failure, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK)) {
        g_clear_error(failure);
    }
    return size;
}

void HttpTransfer::State::take_piece(size_t size) {
    bytes_ += size;
    if (bytes_ > parts_->limits.bytes) {
        fail(name_of(uri_.get()) + " sends more than an answer can be long");
        return;
    }
    expect_more();
    sink_->on_bytes(piece_.data(), size);
}

HttpTransfer::HttpTransfer(std::shared_ptr<State> state) : state_(std::move(state)) {}

HttpTransfer::~HttpTransfer() {
    state_->cancel();
}

void HttpTransfer::hold() {
    state_->hold();
}

void HttpTransfer::go_on() {
    state_->go_on();
}

HttpSession::HttpSession(const Account& account, const HttpLimits& limits)
    : parts_(std::make_shared<Parts>(Parts{new_soup_session(), new_soup_session(), limits,
                                           parse_address(account.address), account.user, account.password})) {
}

HttpSession::~HttpSession() = default;

std::unique_ptr<HttpTransfer> HttpSession::start(HttpQuestion question, HttpSink& sink) {
    auto state = std::make_shared<HttpTransfer::State>(parts_, std::move(question), sink);
    state->start();
    return std::make_unique<HttpTransfer>(std::move(state));
}

std::string wrong_address(const std::string& address) {
    const glib::UriPtr uri = parse_address(address);
    if (!uri) {
        return std::string("the account's address is not one that begins with ") + account_schemes();
    }
    if (g_uri_get_userinfo(uri.get()) != nullptr) {
        return "the account's address must not hold a user or a password";
    }
    return {};
}

}  // namespace engine
