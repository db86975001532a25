#include "tests/dlna/server/file_service.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "tests/dlna/generated_bytes.h"
#include "tests/fakes/web_server.h"

namespace {

constexpr char kGet[] = "GET";
constexpr char kPost[] = "POST";

std::string id_of(const char* path) {
    const std::string text = path;
    const std::string id = text.substr(text.find('/', 1) + 1);
    char* plain = g_uri_unescape_string(id.c_str(), nullptr);
    const std::string unescaped = plain ? plain : id;
    g_free(plain);
    return unescaped;
}

std::string bytes_of(const Object& object) {
    if (object.file.empty()) {
        return generated_bytes(static_cast<std::size_t>(std::max<std::int64_t>(object.size, 0)));
    }
    std::ifstream file(object.file, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string head_of(const Object& object, std::size_t size) {
    return "HTTP/1.1 200 OK\r\nContent-Type: " + object.mime + "\r\nContent-Length: " + std::to_string(size) +
           "\r\n\r\n";
}

/// So many answers that say that another one is to come.
std::string preliminary_answers(int count) {
    std::string answers;
    for (int i = 0; i < count; ++i) {
        answers += "HTTP/1.1 102 Processing\r\n\r\n";
    }
    return answers;
}

}  // namespace

FileService::FileService(SoupServer* server, std::string directory, Content& content, Faults& faults,
                         Journal& journal, std::function<void()> on_import)
    : server_(server),
      directory_(std::move(directory)),
      content_(content),
      faults_(faults),
      journal_(journal),
      on_import_(std::move(on_import)) {
    soup_server_add_handler(server_, "/res", on_get, this, nullptr);
    soup_server_add_early_handler(server_, "/import", on_import_head, this, nullptr);
    soup_server_add_handler(server_, "/import", on_import_body, this, nullptr);
}

FileService::~FileService() {
    release();
    soup_server_remove_handler(server_, "/res");
    soup_server_remove_handler(server_, "/import");
}

void FileService::hold(SoupServerMessage* message, std::function<void(SoupServerMessage*)> then) {
    soup_server_message_pause(message);
    held_.push_back({SOUP_SERVER_MESSAGE(g_object_ref(message)), std::move(then)});
}

void FileService::release() {
    std::vector<Held> held;
    held.swap(held_);
    for (const Held& one : held) {
        // A client that hung up meanwhile has no socket any more.
        if (soup_server_message_get_socket(one.message)) {
            one.then(one.message);
            soup_server_message_unpause(one.message);
        }
        g_object_unref(one.message);
    }
}

void FileService::on_get(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, void* self) {
    auto* service = static_cast<FileService*>(self);
    Faults& faults = service->faults_;
    service->journal_.count(soup_server_message_get_method(message));
    const Object* object = service->content_.find(id_of(path));
    if (auto url = faults.take(kGet, "redirect")) {
        const std::size_t mark = url->find('#');
        redirect(message, 302, mark == std::string::npos ? *url : url->replace(mark, 1, path));
    } else if (const auto status = faults.take_number(kGet, "status")) {
        reply(message, static_cast<unsigned>(*status), "no", "text/plain");
    } else if (!object || object->is_container()) {
        reply(message, 404, "");
    } else if (faults.is_on(kGet, "hold")) {
        service->hold(message,
                      [service, asked = *object](SoupServerMessage* held) { service->give(held, asked); });
    } else {
        service->give(message, *object);
    }
}

void FileService::give(SoupServerMessage* message, const Object& object) {
    const std::string bytes = bytes_of(object);
    const std::string type = faults_.take(kGet, "type").value_or(object.mime);
    if (const auto cut = faults_.take_number(kGet, "cut")) {
        reply_raw(message, head_of(object, bytes.size()) + bytes.substr(0, static_cast<std::size_t>(*cut)));
    } else if (const auto answers = faults_.take_number(kGet, "preliminary")) {
        reply_raw(message, preliminary_answers(*answers) + head_of(object, bytes.size()) + bytes);
    } else if (const auto silent = faults_.take_number(kGet, "silent")) {
        const auto said = std::min(static_cast<std::size_t>(*silent), bytes.size());
        fall_silent(message, 200, bytes.substr(0, said));
        held_.push_back({SOUP_SERVER_MESSAGE(g_object_ref(message)),
                         [rest = bytes.substr(said)](SoupServerMessage* held) { end_silence(held, rest); }});
    } else if (faults_.is_on(kGet, "endless")) {
        reply_endlessly(message, 200, bytes, std::string(60000, ' '));
    } else if (faults_.is_on(kGet, "no-length")) {
        fall_silent(message, 200, bytes.substr(0, bytes.size() / 2));
        end_silence(message, bytes.substr(bytes.size() / 2));
    } else {
        reply(message, 200, bytes, type);
    }
}

void FileService::on_import_head(SoupServer*, SoupServerMessage* message, const char*, GHashTable*,
                                 void* self) {
    auto* service = static_cast<FileService*>(self);
    if (service->faults_.is_on(kPost, "cut")) {
        service->journal_.count(kPost);
        reply_raw(message, "");
    }
}

void FileService::on_import_body(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*,
                                 void* self) {
    auto* service = static_cast<FileService*>(self);
    service->journal_.count(kPost);
    const std::string id = id_of(path);
    if (const auto status = service->faults_.take_number(kPost, "status")) {
        reply(message, static_cast<unsigned>(*status), "no", "text/plain");
    } else if (const auto answers = service->faults_.take_number(kPost, "preliminary")) {
        reply_raw(message, preliminary_answers(*answers) + "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
    } else if (service->faults_.is_on(kPost, "hold")) {
        service->hold(message, [service, id](SoupServerMessage* held) { service->import(held, id); });
    } else {
        service->import(message, id);
    }
}

void FileService::import(SoupServerMessage* message, const std::string& id) {
    Object* object = content_.find(id);
    if (!object || object->imported) {
        reply(message, 404, "");
        return;
    }
    SoupMessageBody* body = soup_server_message_get_request_body(message);
    GBytes* all = soup_message_body_flatten(body);
    gsize size = 0;
    const auto* data = static_cast<const char*>(g_bytes_get_data(all, &size));
    object->file = directory_ + "/" + id;
    std::ofstream(object->file, std::ios::binary).write(data, static_cast<std::streamsize>(size));
    g_bytes_unref(all);
    object->size = static_cast<std::int64_t>(size);
    object->imported = true;
    reply(message, 200, "");
    journal_.note("import:" + object->title, object->file);
    journal_.count("import");
    on_import_();
}
