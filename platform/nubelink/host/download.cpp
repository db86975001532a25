#include "platform/nubelink/host/download.h"

#include <fcntl.h>
#include <gio/gunixoutputstream.h>
#include <libsoup/soup.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "nubelink.h"
#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/worker.h"
#include "platform/support/glib_ptr.h"
#include "platform/support/preliminary_answers.h"

namespace nbl {

namespace {

constexpr size_t kPiece = 256 * 1024;
constexpr int kMostRedirects = 5;
constexpr mode_t kFileRights = 0644;

/// A new file in the place of a regular one, or of none. Nothing is written through a link.
int open_anew(const std::string& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0 && (!S_ISREG(status.st_mode) || unlink(path.c_str()) != 0)) {
        return -1;
    }
    return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kFileRights);
}

bool is_page(const char* type) {
    return type != nullptr && lower_case(type) == "text/html";
}

}  // namespace

/// Shared by the download and by what GLib has under way; the latter finds `report_` empty once the download
/// has ended.
class Download::State : public std::enable_shared_from_this<State> {
public:
    State(const HttpClient& client, DownloadQuestion question, Report report)
        : client_(client), question_(std::move(question)), report_(std::move(report)) {}

    void start();
    void end();

private:
    using Shared = std::shared_ptr<State>;
    void* hand_out() { return std::make_unique<Shared>(shared_from_this()).release(); }
    static Shared take_back(void* handed_out) {
        const std::unique_ptr<Shared> owner(static_cast<Shared*>(handed_out));
        return *owner;
    }
    static void on_sent(GObject* session, GAsyncResult* result, void* state);
    static void on_piece(GObject* stream, GAsyncResult* result, void* state);
    static void on_written(GObject* stream, GAsyncResult* result, void* state);
    void ask(const std::string& uri);
    void take_head();
    void take_redirect();
    int error_of_head() const;
    void read_on();
    void take_piece(glib::BytesPtr piece);
    int error_of_end();
    void be_patient();
    void tell_progress();
    void finish(int error);
    DownloadReport report_of(int state, int error) const { return {state, error, received_, total_}; }

    const HttpClient& client_;
    const DownloadQuestion question_;
    Report report_;
    Timer patience_;
    Timer progress_;
    int redirects_ = 0;
    bool have_file_ = false;
    uint64_t received_ = 0;
    uint64_t total_ = 0;
    glib::BytesPtr piece_;
    glib::ObjectPtr<SoupMessage> message_;
    glib::ObjectPtr<GInputStream> from_;
    glib::ObjectPtr<GOutputStream> to_;
    const glib::ObjectPtr<GCancellable> cancel_{g_cancellable_new()};
};

void Download::State::start() {
    const int file = open_anew(question_.path);
    if (file < 0) {
        NBL_LOG_WARNING("a download cannot be written to %s: %s", question_.path.c_str(), g_strerror(errno));
        patience_.start(0, [this] { finish(NBL_ERROR_FILE); });
        return;
    }
    have_file_ = true;
    to_.reset(g_unix_output_stream_new(file, TRUE));
    if (!is_web_address(question_.uri.c_str())) {
        patience_.start(0, [this] { finish(NBL_ERROR_NETWORK); });
        return;
    }
    progress_.start(question_.interval, [this] { tell_progress(); });
    ask(question_.uri);
}

void Download::State::ask(const std::string& uri) {
    be_patient();
    message_.reset(soup_message_new("GET", uri.c_str()));
    soup_message_add_flags(message_.get(), SOUP_MESSAGE_NO_REDIRECT);
    support::cancel_where_never_answered(message_.get(), cancel_.get());
    // The file as it is, with its true length.
    soup_message_disable_feature(message_.get(), SOUP_TYPE_CONTENT_DECODER);
    soup_message_headers_replace(soup_message_get_request_headers(message_.get()), "Accept-Encoding",
                                 "identity");
    soup_session_send_async(client_.session(), message_.get(), G_PRIORITY_DEFAULT, cancel_.get(),
                            &State::on_sent, hand_out());
}

void Download::State::be_patient() {
    patience_.start(question_.patience, [this] { finish(NBL_ERROR_TIMEOUT); });
}

void Download::State::tell_progress() {
    progress_.start(question_.interval, [this] { tell_progress(); });
    const Shared alive = shared_from_this();  // The report may end the download, and with it the function.
    const Report report = report_;
    report(report_of(NBL_DOWNLOAD_STATE_PROGRESS, NBL_ERROR_NONE));
}

void Download::State::on_sent(GObject* session, GAsyncResult* result, void* handed_out) {
    const Shared state = take_back(handed_out);
    glib::ErrorOut error;
    glib::ObjectPtr<GInputStream> stream(soup_session_send_finish(SOUP_SESSION(session), result, error));
    if (state->report_ == nullptr) {
        return;
    }
    if (stream == nullptr) {
        state->finish(error_of(error.get()));
        return;
    }
    state->from_ = std::move(stream);
    state->take_head();
}

void Download::State::take_head() {
    if (SOUP_STATUS_IS_REDIRECTION(soup_message_get_status(message_.get()))) {
        take_redirect();
        return;
    }
    const int error = error_of_head();
    if (error != NBL_ERROR_NONE) {
        finish(error);
        return;
    }
    SoupMessageHeaders* headers = soup_message_get_response_headers(message_.get());
    if (soup_message_headers_get_encoding(headers) == SOUP_ENCODING_CONTENT_LENGTH) {
        total_ = static_cast<uint64_t>(soup_message_headers_get_content_length(headers));
    }
    read_on();
}

void Download::State::take_redirect() {
    const char* location =
        soup_message_headers_get_one(soup_message_get_response_headers(message_.get()), "Location");
    const glib::UriPtr target(location
                                  ? g_uri_parse_relative(soup_message_get_uri(message_.get()), location,
                                                         static_cast<GUriFlags>(SOUP_HTTP_URI_FLAGS), nullptr)
                                  : nullptr);
    const glib::TextPtr text(target ? g_uri_to_string(target.get()) : nullptr);
    if (text == nullptr || !is_web_address(text.get()) || ++redirects_ > kMostRedirects) {
        NBL_LOG_WARNING("a download is sent to \"%s\", which is not followed",
                        printable(location ? location : "").c_str());
        finish(NBL_ERROR_BAD_ANSWER);
        return;
    }
    from_.reset();
    ask(text.get());
}

int Download::State::error_of_head() const {
    const unsigned status = soup_message_get_status(message_.get());
    if (status == SOUP_STATUS_NOT_FOUND || status == SOUP_STATUS_GONE) {
        return NBL_ERROR_ITEM_NOT_EXIST;
    }
    if (status != SOUP_STATUS_OK) {
        return NBL_ERROR_REFUSED;
    }
    const char* type =
        soup_message_headers_get_content_type(soup_message_get_response_headers(message_.get()), nullptr);
    const bool wanted = question_.mimetype.empty() || is_page(question_.mimetype.c_str());
    return is_page(type) && !wanted ? NBL_ERROR_BAD_ANSWER : NBL_ERROR_NONE;
}

void Download::State::read_on() {
    be_patient();
    g_input_stream_read_bytes_async(from_.get(), kPiece, G_PRIORITY_DEFAULT, cancel_.get(), &State::on_piece,
                                    hand_out());
}

void Download::State::on_piece(GObject* stream, GAsyncResult* result, void* handed_out) {
    const Shared state = take_back(handed_out);
    glib::ErrorOut error;
    glib::BytesPtr piece(g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, error));
    if (state->report_ == nullptr) {
        return;
    }
    if (piece == nullptr) {
        state->finish(error_of(error.get()));
        return;
    }
    state->take_piece(std::move(piece));
}

void Download::State::take_piece(glib::BytesPtr piece) {
    const size_t size = g_bytes_get_size(piece.get());
    if (size == 0) {
        finish(error_of_end());
        return;
    }
    piece_ = std::move(piece);
    patience_.stop();  // The drive may take its time.
    g_output_stream_write_all_async(to_.get(), g_bytes_get_data(piece_.get(), nullptr), size,
                                    G_PRIORITY_DEFAULT, cancel_.get(), &State::on_written, hand_out());
}

int Download::State::error_of_end() {
    if (total_ != 0 && received_ != total_) {
        return NBL_ERROR_NETWORK;
    }
    // Some file systems tell only now that there is no room.
    return g_output_stream_close(to_.get(), nullptr, nullptr) ? NBL_ERROR_NONE : NBL_ERROR_FILE;
}

void Download::State::on_written(GObject* stream, GAsyncResult* result, void* handed_out) {
    const Shared state = take_back(handed_out);
    glib::ErrorOut error;
    gsize written = 0;
    const bool all = g_output_stream_write_all_finish(G_OUTPUT_STREAM(stream), result, &written, error);
    if (state->report_ == nullptr) {
        return;
    }
    state->received_ += written;
    if (!all) {
        NBL_LOG_WARNING("a download cannot be written to %s: %s", state->question_.path.c_str(),
                        error.message());
        state->finish(NBL_ERROR_FILE);
        return;
    }
    state->read_on();
}

void Download::State::finish(int error) {
    const Shared alive = shared_from_this();  // The report may end the download.
    const Report report = report_;
    if (error == NBL_ERROR_NONE) {
        have_file_ = false;  // It stays.
    }
    end();
    report(
        report_of(error == NBL_ERROR_NONE ? NBL_DOWNLOAD_STATE_COMPLETE : NBL_DOWNLOAD_STATE_FAILED, error));
}

void Download::State::end() {
    report_ = nullptr;
    patience_.stop();
    progress_.stop();
    g_cancellable_cancel(cancel_.get());
    if (std::exchange(have_file_, false)) {
        unlink(question_.path.c_str());
    }
}

Download::Download(const HttpClient& client, DownloadQuestion question, Report report)
    : state_(std::make_shared<State>(client, std::move(question), std::move(report))) {
    state_->start();
}

Download::~Download() {
    state_->end();
}

}  // namespace nbl
