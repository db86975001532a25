#ifndef QRA_TESTS_UNIT_PLAYLIST_M3U_TEXT_H
#define QRA_TESTS_UNIT_PLAYLIST_M3U_TEXT_H

#include <sstream>
#include <string>

#include "libqra-agent/playlist/m3u.h"
#include "libqra-agent/playlist/m3u_parser.h"

/// What the parser makes of a text.
inline M3U parse_m3u(const std::string& text) {
    std::istringstream stream(text);
    M3U m3u;
    M3UParser().parse(stream, &m3u);
    return m3u;
}

#endif
