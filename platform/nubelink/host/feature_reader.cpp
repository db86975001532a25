#include "platform/nubelink/host/feature_reader.h"

#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/xml.h"

namespace nbl {

namespace {

constexpr size_t kLongestText = 1024;
constexpr size_t kLongestList = 64 * 1024;

std::string_view cut(std::string_view text) {
    return text.substr(0, cut_at_character(text, kLongestText));
}

class FeatureHandler : public XmlHandler {
public:
    explicit FeatureHandler(std::vector<FeaturePtr>& features) : features_(features) {}

    void open(const XmlName& name, const XmlAttributes& attributes) override {
        ++depth_;
        in_ids_ = false;
        if (name.local == "Feature" && feature_depth_ == 0 && features_.size() < kMostFeatures) {
            feature_depth_ = depth_;
            features_.push_back(std::make_unique<nbl_feature_s>());
            features_.back()->name = cut(attributes.find("name"));
        } else if (feature_depth_ > 0 && name.local == "container") {
            add_container(*features_.back(), attributes.find("id"));
        } else if (feature_depth_ > 0 && name.local == "objectIDs") {
            in_ids_ = true;
            ids_.clear();
        }
    }

    void text(std::string_view piece) override {
        if (in_ids_ && ids_.size() + piece.size() <= kLongestList) {
            ids_ += piece;
        }
    }

    void close() override {
        if (in_ids_) {
            close_ids();
        }
        if (depth_ == feature_depth_) {
            feature_depth_ = 0;
        }
        --depth_;
    }

private:
    void close_ids() {
        in_ids_ = false;
        std::string_view rest = ids_;
        while (!rest.empty()) {
            add_container(*features_.back(), trimmed(next_field(rest, ',')));
        }
    }

    std::vector<FeaturePtr>& features_;
    std::string ids_;
    int depth_ = 0;
    int feature_depth_ = 0;  ///< of the feature that is open; 0 for none
    bool in_ids_ = false;
};

}  // namespace

void add_container(nbl_feature_s& feature, std::string_view id) {
    if (id.empty() || feature.containers.size() >= kMostContainers) {
        return;
    }
    feature.containers.push_back(std::make_unique<nbl_container_s>(nbl_container_s{std::string(cut(id))}));
    feature.container_list.push_back(feature.containers.back().get());
}

std::vector<FeaturePtr> read_features(std::string_view document) {
    std::vector<FeaturePtr> features;
    FeatureHandler handler(features);
    read_xml(trimmed(document), handler);
    return features;
}

}  // namespace nbl
