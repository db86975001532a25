#ifndef QRA_AGENT_PLAYLIST_M3U_PARSER_H
#define QRA_AGENT_PLAYLIST_M3U_PARSER_H

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

#include "libqra-agent/playlist/m3u.h"

/**
 * Reads one playlist file. Never rejects anything: what it does not recognise it drops, and what is malformed
 * gives empty or odd fields. Numbers are read the same in every locale.
 *
 * For one file and one thread.
 */
class M3UParser {
public:
    /// Reads to the end of the stream, and adds to what `out` holds.
    void parse(std::istream& in, M3U* out);

private:
    friend struct M3UParserPeer;

    static constexpr size_t kFields = 22;

    void _parse_line(std::string_view line, M3U* out);
    void _parse_simple_parameter(std::string_view line, M3U* out);
    void _parse_key(std::string_view line, M3U* out);
    void _parse_stream_inf(std::string_view line, M3U* out);
    void _parse_variant_playlist(std::string_view line, M3U* out);
    void _parse_extinf(std::string_view line, M3U* out);
    void _parse_ts_chunk(std::string_view line, M3U* out);
    void _parse_byterange(std::string_view text, int32_t& length, int32_t& offset);
    void _parse_attributes(std::string_view text, M3U::Attributes& attributes);
    static int32_t _string_to_int(std::string_view text);
    static void _remove_quotes(std::string& text);

    M3U::Attributes m_Attributes;               ///< of the stream that waits for its line
    std::array<std::string, kFields> m_Fields;  ///< of the record that waits for its line
    bool m_bChunkNext = false;                  ///< the next line belongs to a record
    bool m_bVariantNext = false;                ///< the next line belongs to a stream
};

#endif
