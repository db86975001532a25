#include "platform/files/key_file.h"

#include "platform/support/glib_ptr.h"

namespace files {

bool replace_key_file(GKeyFile* file, const std::string& path, mode_t mode) {
    gsize length = 0;
    const glib::TextPtr content(g_key_file_to_data(file, &length, nullptr));
    constexpr auto kAtomicAndDurable =
        static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT | G_FILE_SET_CONTENTS_DURABLE);
    return g_file_set_contents_full(path.c_str(), content.get(), static_cast<gssize>(length),
                                    kAtomicAndDurable, static_cast<int>(mode), nullptr);
}

}  // namespace files
