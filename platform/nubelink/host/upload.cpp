#include "platform/nubelink/host/upload.h"

#include <fcntl.h>
#include <gio/gunixinputstream.h>
#include <libsoup/soup.h>
#include <sys/stat.h>

#include <cerrno>
#include <utility>

#include "nubelink.h"
#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/worker.h"
#include "platform/nubelink/host/xml.h"
#include "platform/support/glib_ptr.h"
#include "platform/support/preliminary_answers.h"

namespace nbl {

namespace {

/// A server puts the object where it likes best. Servers that do not know this are asked for their root.
constexpr const char* kContainers[] = {"DLNA.ORG_AnyContainer", "0"};

const char* class_of(std::string_view mimetype) {
    if (starts_with(mimetype, "image/")) {
        return "object.item.imageItem.photo";
    }
    if (starts_with(mimetype, "audio/")) {
        return "object.item.audioItem.musicTrack";
    }
    return starts_with(mimetype, "video/") ? "object.item.videoItem" : "object.item";
}

/// Finds the first address to which content may be sent.
class ImportFinder final : public XmlHandler {
public:
    void open(const XmlName& name, const XmlAttributes& attributes) override {
        const std::string address(attributes.find("importUri"));
        if (found.empty() && name.local == "res" && is_web_address(address.c_str())) {
            found = address;
        }
    }
    void text(std::string_view) override {}
    void close() override {}

    std::string found;
};

}  // namespace

std::string upload_didl(const UploadQuestion& question, const std::string& container, int64_t size) {
    const std::string size_text = size < 0 ? "" : " size=\"" + std::to_string(size) + "\"";
    return "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\""
           " xmlns:dc=\"http://purl.org/dc/elements/1.1/\""
           " xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\">"
           "<item id=\"\" parentID=\"" +
           xml_escaped(container) + "\" restricted=\"0\"><dc:title>" + xml_escaped(question.title) +
           "</dc:title><upnp:class>" + class_of(question.mimetype) +
           "</upnp:class><res protocolInfo=\"http-get:*:" + xml_escaped(question.mimetype) + ":*\"" +
           size_text + "></res></item></DIDL-Lite>";
}

std::string import_address_of(std::string_view didl) {
    ImportFinder finder;
    read_xml(didl, finder);
    return finder.found;
}

/// Shared by the upload and by what GLib has under way; the latter finds `open_` false once the upload has
/// ended.
class Upload::State : public std::enable_shared_from_this<State> {
public:
    State(const HttpClient& client, UploadQuestion question, UploadReports reports)
        : client_(client), question_(std::move(question)), reports_(std::move(reports)) {}
    ~State();

    void start();
    void end();

private:
    using Shared = std::shared_ptr<State>;
    static void on_body_data(SoupMessage* message, unsigned size, void* state);
    static void on_sent(GObject* session, GAsyncResult* result, void* state);
    bool open_content();
    void create(size_t container);
    void take_created(size_t container, const SoapAnswer& answer);
    void send(const std::string& address);
    void be_patient();
    void tell_progress();
    void finish(int error);

    const HttpClient& client_;
    const UploadQuestion question_;
    const UploadReports reports_;
    bool open_ = true;
    Timer patience_;
    Timer progress_;
    glib::ObjectPtr<GInputStream> content_;
    int64_t size_ = -1;
    uint64_t sent_ = 0;
    std::string object_id_;  ///< as long as the object is to be taken away on a failure
    std::unique_ptr<SoapCall> create_;
    glib::ObjectPtr<SoupMessage> message_;
    const glib::ObjectPtr<GCancellable> cancel_{g_cancellable_new()};
};

Upload::State::~State() {
    if (message_ != nullptr) {
        // libsoup may keep the message for longer.
        g_signal_handlers_disconnect_by_data(message_.get(), this);
    }
}

void Upload::State::start() {
    if (open_content()) {
        create(0);
    } else {
        NBL_LOG_WARNING("%s cannot be sent: %s", question_.path.c_str(), g_strerror(errno));
        patience_.start(0, [this] { finish(NBL_ERROR_FILE); });
    }
}

/// A FIFO without a writer is opened too; its content is waited for.
bool Upload::State::open_content() {
    const int file = open(question_.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status {};
    if (file < 0) {
        return false;
    }
    content_.reset(g_unix_input_stream_new(file, TRUE));
    if (fstat(file, &status) != 0) {
        return false;
    }
    if (question_.live ? !S_ISFIFO(status.st_mode) : !S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return false;
    }
    size_ = question_.live ? -1 : status.st_size;
    return true;
}

void Upload::State::create(size_t container) {
    SoapQuestion question{"CreateObject",
                          {{"ContainerID", kContainers[container]},
                           {"Elements", upload_didl(question_, kContainers[container], size_)}}};
    question.repeatable = false;
    create_ = std::make_unique<SoapCall>(
        client_, question_.directory, question,
        [this, container](const SoapAnswer& answer) { take_created(container, answer); });
}

void Upload::State::take_created(size_t container, const SoapAnswer& answer) {
    const bool no_such_place = answer.error == NBL_ERROR_ITEM_NOT_EXIST || answer.error == NBL_ERROR_REFUSED;
    if (no_such_place && container + 1 < std::size(kContainers)) {
        create(container + 1);
        return;
    }
    if (answer.error != NBL_ERROR_NONE) {
        finish(answer.error);
        return;
    }
    object_id_ = answer.find("ObjectID");
    const std::string address = import_address_of(answer.find("Result"));
    if (address.empty()) {
        NBL_LOG_WARNING("a server takes \"%s\" and does not tell where", printable(question_.title).c_str());
        finish(NBL_ERROR_BAD_ANSWER);
        return;
    }
    const Shared alive = shared_from_this();  // The report may end the upload.
    reports_.started();
    if (open_) {
        send(address);
    }
}

void Upload::State::send(const std::string& address) {
    message_.reset(soup_message_new("POST", address.c_str()));
    soup_message_add_flags(message_.get(), SOUP_MESSAGE_NO_REDIRECT);
    soup_message_add_flags(message_.get(), SOUP_MESSAGE_NEW_CONNECTION);
    soup_message_set_request_body(message_.get(), question_.mimetype.c_str(), content_.get(), size_);
    support::cancel_where_never_answered(message_.get(), cancel_.get());
    g_signal_connect(message_.get(), "wrote-body-data", G_CALLBACK(&State::on_body_data), this);
    progress_.start(question_.interval, [this] { tell_progress(); });
    be_patient();
    soup_session_send_async(client_.session(), message_.get(), G_PRIORITY_DEFAULT, cancel_.get(),
                            &State::on_sent, std::make_unique<Shared>(shared_from_this()).release());
}

void Upload::State::be_patient() {
    patience_.start(question_.patience, [this] { finish(NBL_ERROR_TIMEOUT); });
}

void Upload::State::on_body_data(SoupMessage*, unsigned size, void* self) {
    auto* state = static_cast<State*>(self);
    state->sent_ += size;
    if (state->open_) {
        state->be_patient();
    }
}

void Upload::State::tell_progress() {
    progress_.start(question_.interval, [this] { tell_progress(); });
    const Shared alive = shared_from_this();
    reports_.progress(sent_, size_ < 0 ? 0 : static_cast<uint64_t>(size_));
}

void Upload::State::on_sent(GObject* session, GAsyncResult* result, void* handed_out) {
    const std::unique_ptr<Shared> owner(static_cast<Shared*>(handed_out));
    const Shared state = *owner;
    glib::ErrorOut error;
    const glib::ObjectPtr<GInputStream> answer(
        soup_session_send_finish(SOUP_SESSION(session), result, error));
    if (!state->open_) {
        return;
    }
    if (answer == nullptr) {
        NBL_LOG_WARNING("%s cannot be sent: %s", state->question_.path.c_str(), error.message());
        state->finish(NBL_ERROR_NETWORK);
        return;
    }
    const unsigned status = soup_message_get_status(state->message_.get());
    const bool whole = state->size_ < 0 || state->sent_ == static_cast<uint64_t>(state->size_);
    state->finish(!SOUP_STATUS_IS_SUCCESSFUL(status) ? NBL_ERROR_REFUSED
                  : whole                            ? NBL_ERROR_NONE
                                                     : NBL_ERROR_FILE);
}

void Upload::State::finish(int error) {
    const Shared alive = shared_from_this();  // The report may end the upload.
    if (error == NBL_ERROR_NONE) {
        object_id_.clear();
    }
    end();
    reports_.completed(error);
}

void Upload::State::end() {
    open_ = false;
    patience_.stop();
    progress_.stop();
    create_.reset();
    content_.reset();
    g_cancellable_cancel(cancel_.get());
    if (!object_id_.empty()) {
        reports_.left_behind(std::exchange(object_id_, {}));
    }
}

Upload::Upload(const HttpClient& client, UploadQuestion question, UploadReports reports)
    : state_(std::make_shared<State>(client, std::move(question), std::move(reports))) {
    state_->start();
}

Upload::~Upload() {
    state_->end();
}

}  // namespace nbl
