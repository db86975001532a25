#include "platform/media-content/host/metadata/xmp_reader.h"

#include <strings.h>

#include <charconv>
#include <string>
#include <vector>

#include "platform/media-content/host/metadata/xml_properties.h"

namespace media_content {
namespace {

bool equals_no_case(const std::string& text, const char* other) {
    return strcasecmp(text.c_str(), other) == 0;
}

}  // namespace

bool read_picture_xmp(std::string_view packet, MediaRecord& record) {
    enum { kProjection, kUseViewer, kBurst, kRating };
    std::vector<XmlProperty> found = {
        {"http://ns.google.com/photos/1.0/panorama/ ProjectionType", {}},
        {"http://ns.google.com/photos/1.0/panorama/ UsePanoramaViewer", {}},
        {"http://ns.google.com/photos/1.0/camera/ BurstID", {}},
        {"http://ns.adobe.com/xap/1.0/ Rating", {}},
    };
    const bool well_formed = find_xml_properties(packet, found);
    // The viewer is the default: only a picture that says otherwise is meant to be seen flat.
    if (equals_no_case(found[kProjection].value, "equirectangular") &&
        !equals_no_case(found[kUseViewer].value, "false")) {
        record.is_360 = true;
        record.stitch_type = StitchType::kStitched;
    }
    record.image.burst_id = found[kBurst].value;
    const std::string& rating = found[kRating].value;
    std::from_chars(rating.data(), rating.data() + rating.size(), record.rating);
    return well_formed;
}

bool read_spherical_video_xml(std::string_view xml, MediaRecord& record) {
    enum { kSpherical, kStitched };
    std::vector<XmlProperty> found = {
        {"http://ns.google.com/videos/1.0/spherical/ Spherical", {}},
        {"http://ns.google.com/videos/1.0/spherical/ Stitched", {}},
    };
    const bool well_formed = find_xml_properties(xml, found);
    if (equals_no_case(found[kSpherical].value, "true")) {
        record.is_360 = true;
        record.stitch_type =
            equals_no_case(found[kStitched].value, "true") ? StitchType::kStitched : StitchType::kUnstitched;
    }
    return well_formed;
}

}  // namespace media_content
