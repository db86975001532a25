#ifndef QRA_AGENT_SOURCE_PTP_QRA_PTP_VIDEO_360_H
#define QRA_AGENT_SOURCE_PTP_QRA_PTP_VIDEO_360_H

#include <functional>
#include <string>

/**
 * What an MP4 film tells of being a 360-degree film, found box by box: only the boxes' heads and the payloads
 * that are looked at are asked for.
 *
 * A film is not trusted. A walk moves forward only, looks at kPTPMostBoxes boxes at most, and ends at the
 * first head or payload that is not there; what was found until then stays.
 */

/// Gives a piece of the film; false unless all of it is there.
using qra_ptp_piece_reader =
    std::function<bool(unsigned long long nOffset, unsigned nLength, std::string& strPiece)>;

/// More than a film has in front of its samples.
constexpr int kPTPMostBoxes = 4096;
/// No more of a spherical video's description is looked at.
constexpr unsigned kPTPLargestDescription = 1024 * 1024;

/**
 * Reads the camera's own boxes.
 * @param readPiece    gives pieces of the film
 * @param nSize        bytes of the film
 * @param[in,out] pIs360       set or cleared by the box "m360"
 * @param[in,out] pStitchType  set by the box "m360", further bits by the box "stip"
 */
void qra_ptp_read_video_makernote(const qra_ptp_piece_reader& readPiece, unsigned long long nSize,
                                  bool* pIs360, int* pStitchType);

/// Reads the description of a spherical video; both values stay as they were if there is none.
void qra_ptp_read_video_description(const qra_ptp_piece_reader& readPiece, unsigned long long nSize,
                                    bool* pIs360, int* pStitchType);

#endif
