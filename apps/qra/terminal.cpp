#include "apps/qra/terminal.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <string_view>

namespace {

constexpr int kDefaultWidth = 80;
constexpr int kLargestWidth = 1000;

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

int terminal_width(int descriptor) {
    winsize size{};
    int width = 0;
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0) {
        width = size.ws_col;
    } else {
        const std::string_view columns = environment("COLUMNS");
        std::from_chars(columns.data(), columns.data() + columns.size(), width);
    }
    return width > 0 ? std::min(width, kLargestWidth) : kDefaultWidth;
}

bool wants_colour(int descriptor) {
    return isatty(descriptor) == 1 && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

bool locale_is_utf8() {
    return std::string_view(nl_langinfo(CODESET)) == "UTF-8";
}
