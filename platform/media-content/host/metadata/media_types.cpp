#include "platform/media-content/host/metadata/media_types.h"

#include <algorithm>
#include <array>

namespace media_content {
namespace {

constexpr MediaKind kImage = MediaKind::kImage;
constexpr MediaKind kVideo = MediaKind::kVideo;
constexpr MediaKind kMusic = MediaKind::kMusic;
constexpr MediaKind kRecording = MediaKind::kRecording;
constexpr MediaKind kUhd = MediaKind::kUhd;
constexpr MediaKind kScsa = MediaKind::kScsa;

constexpr MediaType kTypes[] = {
    {"jpg", kImage, "image/jpeg"},
    {"jpeg", kImage, "image/jpeg"},
    {"jpe", kImage, "image/jpeg"},
    {"jfif", kImage, "image/jpeg"},
    {"jps", kImage, "image/x-jps"},
    {"mpo", kImage, "image/mpo"},
    {"bmp", kImage, "image/bmp"},
    {"dib", kImage, "image/bmp"},
    {"png", kImage, "image/png"},
    {"apng", kImage, "image/apng"},
    {"pns", kImage, "image/pns"},
    {"gif", kImage, "image/gif"},
    {"webp", kImage, "image/webp"},
    {"heic", kImage, "image/heic"},
    {"heics", kImage, "image/heic-sequence"},
    {"heif", kImage, "image/heif"},
    {"heifs", kImage, "image/heif-sequence"},
    {"hif", kImage, "image/heif"},
    {"avif", kImage, "image/avif"},
    {"avifs", kImage, "image/avif"},
    {"tif", kImage, "image/tiff"},
    {"tiff", kImage, "image/tiff"},
    {"dng", kImage, "image/x-adobe-dng"},
    {"arw", kImage, "image/x-sony-arw"},
    {"sr2", kImage, "image/x-sony-sr2"},
    {"cr2", kImage, "image/x-canon-cr2"},
    {"cr3", kImage, "image/x-canon-cr3"},
    {"nef", kImage, "image/x-nikon-nef"},
    {"nrw", kImage, "image/x-nikon-nrw"},
    {"orf", kImage, "image/x-olympus-orf"},
    {"rw2", kImage, "image/x-panasonic-rw2"},
    {"raw", kImage, "image/x-panasonic-raw"},
    {"rwl", kImage, "image/x-leica-rwl"},
    {"raf", kImage, "image/x-fuji-raf"},
    {"pef", kImage, "image/x-pentax-pef"},
    {"srw", kImage, "image/x-samsung-srw"},
    {"3fr", kImage, "image/x-hasselblad-3fr"},
    {"iiq", kImage, "image/x-phaseone-iiq"},
    {"erf", kImage, "image/x-epson-erf"},
    {"kdc", kImage, "image/x-kodak-kdc"},
    {"dcr", kImage, "image/x-kodak-dcr"},

    {"mp4", kVideo, "video/mp4"},
    {"m4v", kVideo, "video/x-m4v"},
    {"mov", kVideo, "video/quicktime"},
    {"qt", kVideo, "video/quicktime"},
    {"insv", kVideo, "video/mp4"},
    {"360", kVideo, "video/mp4"},
    {"3gp", kVideo, "video/3gpp"},
    {"3gpp", kVideo, "video/3gpp"},
    {"3g2", kVideo, "video/3gpp2"},
    {"k3g", kVideo, "video/3gpp"},
    {"skm", kVideo, "video/3gpp"},
    {"mkv", kVideo, "video/x-matroska"},
    {"mk3d", kVideo, "video/x-matroska-3d"},
    {"webm", kVideo, "video/webm"},
    {"avi", kVideo, "video/x-msvideo"},
    {"divx", kVideo, "video/x-msvideo"},
    {"xvid", kVideo, "video/x-msvideo"},
    {"mpg", kVideo, "video/mpeg"},
    {"mpeg", kVideo, "video/mpeg"},
    {"mpe", kVideo, "video/mpeg"},
    {"m1v", kVideo, "video/mpeg"},
    {"m2v", kVideo, "video/mpeg"},
    {"m2p", kVideo, "video/mpeg"},
    {"vob", kVideo, "video/dvd"},
    {"vro", kVideo, "video/dvd"},
    {"evo", kVideo, "video/dvd"},
    {"ts", kVideo, "video/mp2t"},
    {"trp", kVideo, "video/mp2t"},
    {"tp", kVideo, "video/mp2t"},
    {"tts", kVideo, "video/mp2t"},
    {"m2t", kVideo, "video/mp2t"},
    {"m2ts", kVideo, "video/mp2t"},
    {"mts", kVideo, "video/mp2t"},
    {"tod", kVideo, "video/mp2t"},
    {"mod", kVideo, "video/mpeg"},
    {"s4ud", kVideo, "video/mp4"},
    {"svi", kVideo, "video/x-msvideo"},
    {"wmv", kVideo, "video/x-ms-wmv"},
    {"asf", kVideo, "video/x-ms-asf"},
    {"flv", kVideo, "video/x-flv"},
    {"f4v", kVideo, "video/mp4"},
    {"rm", kVideo, "application/vnd.rn-realmedia"},
    {"rmvb", kVideo, "application/vnd.rn-realmedia-vbr"},
    {"ogv", kVideo, "video/ogg"},
    {"ogm", kVideo, "video/ogg"},
    {"mxf", kVideo, "application/mxf"},
    {"dv", kVideo, "video/dv"},
    {"mjpg", kVideo, "video/x-motion-jpeg"},
    {"mjpeg", kVideo, "video/x-motion-jpeg"},

    {"mp3", kMusic, "audio/mpeg"},
    {"mp2", kMusic, "audio/mpeg"},
    {"mpa", kMusic, "audio/mpeg"},
    {"mpga", kMusic, "audio/mpeg"},
    {"m4a", kMusic, "audio/mp4"},
    {"m4b", kMusic, "audio/mp4"},
    {"aac", kMusic, "audio/aac"},
    {"flac", kMusic, "audio/flac"},
    {"ogg", kMusic, "audio/ogg"},
    {"oga", kMusic, "audio/ogg"},
    {"opus", kMusic, "audio/opus"},
    {"spx", kMusic, "audio/x-speex"},
    {"wav", kMusic, "audio/wav"},
    {"aif", kMusic, "audio/aiff"},
    {"aiff", kMusic, "audio/aiff"},
    {"aifc", kMusic, "audio/aiff"},
    {"wma", kMusic, "audio/x-ms-wma"},
    {"ape", kMusic, "audio/x-ape"},
    {"mpc", kMusic, "audio/x-musepack"},
    {"wv", kMusic, "audio/x-wavpack"},
    {"tta", kMusic, "audio/x-tta"},
    {"mka", kMusic, "audio/x-matroska"},
    {"weba", kMusic, "audio/webm"},
    {"ac3", kMusic, "audio/ac3"},
    {"eac3", kMusic, "audio/eac3"},
    {"ec3", kMusic, "audio/eac3"},
    {"dts", kMusic, "audio/vnd.dts"},
    {"amr", kMusic, "audio/amr"},
    {"awb", kMusic, "audio/amr-wb"},
    {"3ga", kMusic, "audio/3gpp"},
    {"au", kMusic, "audio/basic"},
    {"ra", kMusic, "audio/x-realaudio"},
    {"caf", kMusic, "audio/x-caf"},
    {"dsf", kMusic, "audio/x-dsf"},
    {"dff", kMusic, "audio/x-dff"},
    {"mid", kMusic, "audio/midi"},
    {"midi", kMusic, "audio/midi"},

    {"srf", kRecording, "video/mp2t"},

    {"um4", kUhd, "video/mp4"},
    {"km4", kUhd, "video/mp4"},
    {"sum4", kUhd, "video/mp4"},

    {"uvu", kScsa, "video/vnd.dece.mp4"},
    {"uva", kScsa, "audio/vnd.dece.audio"},
    {"uvt", kScsa, "application/vnd.dece.ttml+xml"},
    {"scsa", kScsa, "video/mp4"},
    {"uvz", kScsa, "application/vnd.dece.zip"},
};

constexpr size_t kLongestExtension = 5;

bool before(const MediaType& left, const MediaType& right) {
    return left.extension < right.extension;
}

}  // namespace

const std::vector<MediaType>& media_types() {
    // Never destroyed: a scan may still ask while the process ends.
    static const auto& sorted = *[] {
        auto* types = new std::vector<MediaType>(std::begin(kTypes), std::end(kTypes));
        std::sort(types->begin(), types->end(), before);
        return types;
    }();
    return sorted;
}

const MediaType* find_media_type(std::string_view file_name) {
    const size_t dot = file_name.rfind('.');
    if (dot == std::string_view::npos || file_name.size() - dot - 1 > kLongestExtension) {
        return nullptr;
    }
    std::array<char, kLongestExtension> lowered{};
    const std::string_view extension = file_name.substr(dot + 1);
    std::transform(extension.begin(), extension.end(), lowered.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const MediaType wanted{{lowered.data(), extension.size()}, MediaKind::kOther, {}};
    const auto& types = media_types();
    const auto found = std::lower_bound(types.begin(), types.end(), wanted, before);
    return found != types.end() && found->extension == wanted.extension ? &*found : nullptr;
}

}  // namespace media_content
