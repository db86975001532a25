#include "libqra-agent/source/nubelink/qra_dlna_mime.h"

namespace {

struct MimeRow {
    const char* szExtension;
    const char* szMime;
};

// Servers have been told these for long; "html" is sent as plain text on purpose.
constexpr MimeRow MIME_ROWS[] = {
    {"jpeg", "image/jpeg"},
    {"jpeg_med", "image/jpeg"},
    {"jpeg_sm", "image/jpeg"},
    {"jpeg_tn", "image/jpeg"},
    {"jpeg_lrg", "image/jpeg"},
    {"jpg", "image/jpeg"},
    {"gif", "image/gif"},
    {"mpo", "image/mpo"},
    {"png", "image/png"},
    {"tif", "image/tiff"},
    {"tiff", "image/tiff"},
    {"bmp", "image/bmp"},
    {"wma", "audio/x-ms-wma"},
    {"wav", "audio/x-wav"},
    {"ac3", "audio/ac3"},
    {"midi", "audio/midi"},
    {"mid", "audio/midi"},
    {"aiff", "audio/x-aiff"},
    {"aif", "audio/x-aiff"},
    {"au", "audio/x-au"},
    {"snd", "audio/x-snd"},
    {"mp2", "audio/mpeg"},
    {"mp3", "audio/mpeg"},
    {"mp4", "video/mp4"},
    {"m4a", "audio/m4a"},
    {"aac", "audio/aac"},
    {"ogg", "audio/x-ogg"},
    {"flac", "audio/x-flac"},
    {"3ga", "audio/3ga"},
    {"ape", "audio/ape"},
    {"mka", "audio/x-matroska"},
    {"mpeg_ts_sd_ko", "video/vnd.dlna.mpeg-tts"},
    {"mpeg_ts_hd_ko", "video/vnd.dlna.mpeg-tts"},
    {"mpeg_ts_sd_ko_t", "video/vnd.dlna.mpeg-tts"},
    {"mpeg_ts_hd_ko_t", "video/vnd.dlna.mpeg-tts"},
    {"tp", "video/vnd.dlna.mpeg-tts"},
    {"mpeg", "video/mpeg"},
    {"mpg", "video/mpeg"},
    {"mkv", "video/x-matroska"},
    {"wmv", "video/x-ms-wmv"},
    {"asf", "video/x-ms-asf"},
    {"asx", "video/x-ms-asf"},
    {"avi", "video/x-msvideo"},
    {"mov", "video/quicktime"},
    {"ivf", "video/x-ivf"},
    {"mpa", "video/mpa"},
    {"trp", "video/trp"},
    {"3gp", "video/3gpp"},
    {"divx", "video/x-divx"},
    {"flv", "video/x-flv"},
    {"vob", "video/dvd"},
    {"webm", "video/webm"},
    {"lpcm1", "application/octet-stream"},
    {"lpcm2", "application/octet-stream"},
    {"lpcm3", "application/octet-stream"},
    {"lpcm4", "application/octet-stream"},
    {"vro", "application/octet-stream"},
    {"ts", "application/octet-stream"},
    {"svi", "application/octet-stream"},
    {"m2ts", "application/octet-stream"},
    {"mts", "application/octet-stream"},
    {"htm", "text/html"},
    {"html", "text/plain"},
    {"xml", "text/xml; charset=\"utf-8\""},
    {"xhtml", "application/vnd.pwg-xhtml-print"},
    {"playlist", "text/xml"},
};

}  // namespace

qra_dlna_mime_map qra_dlna_make_mime_map() {
    qra_dlna_mime_map map;
    for (const MimeRow& row : MIME_ROWS) {
        map.emplace(row.szExtension, row.szMime);
    }
    return map;
}
