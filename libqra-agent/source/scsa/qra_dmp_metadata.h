#ifndef QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_METADATA_H
#define QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_METADATA_H

#include <string>
#include <vector>

/// What a package tells of a content as a whole. A text that its XML does not have is empty.
struct _stDMPMetadata_common {
    int nIndex = 0;  ///< always 0
    std::string strContentID;
    std::string strDECEMediaProfile;
    std::string strRunLength;
    std::string strPublisher;
    std::string strTitleDisplay19;
    std::string strTitleDisplay60;
    std::string strTitleDisplayUnlimited;
    std::string strTitleDisplaySort;
    std::string strSummary190;
    std::string strSummary400;
    std::string strSummary4000;
    std::string strDescriptionLanguage;
};

/// A picture of a content: its cover, or that of a chapter.
struct _stDMPMetadata_image {
    int nWidth = 0;
    int nHeight = 0;
    std::string strEncoding;
    std::string strTrackReference;  ///< names the picture within the SFF at strLocation; empty for a poster
    std::string strLocation;        ///< the poster's or the SFF's entry, or the stand-alone file itself
};

struct _stDMPMetadata_rating {
    std::string strCountry;
    std::string strSystem;
    std::string strValue;
    std::string strDescription;
    std::string strAdultContent;
};

/// One content of a package.
struct _stDMPMETADATA {
    _stDMPMetadata_common common;
    std::vector<_stDMPMetadata_image> images;  ///< the cover comes first, if there is one
    std::vector<_stDMPMetadata_rating> ratings;
};

#endif
