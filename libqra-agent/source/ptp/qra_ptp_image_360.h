#ifndef QRA_AGENT_SOURCE_PTP_QRA_PTP_IMAGE_360_H
#define QRA_AGENT_SOURCE_PTP_QRA_PTP_IMAGE_360_H

#include <cstdio>

/**
 * What a JPEG file tells of being a 360-degree picture.
 *
 * A file is not trusted. Each test reads no more than the file holds and ends, whatever the file says, in a
 * time that its size bounds; what was found until then stays.
 */

/**
 * Reads the maker note of the EXIF data.
 *
 * Numbers are read in the processor's byte order and swapped if the file names a byte order, whichever: only
 * big-endian files are understood by a little-endian processor.
 *
 * @param pFile        the file, at its beginning
 * @param[in,out] pIs360       set or cleared by the note's picture kind; as it was without one
 * @param[in,out] pStitchType  set by the picture kind, further bits by the note's stitching data
 */
void qra_ptp_read_image_makernote(std::FILE* pFile, bool* pIs360, int* pStitchType);

/// True if an XMP packet of the file asks for a panorama viewer and an equirectangular projection.
bool qra_ptp_has_panorama_packet(std::FILE* pFile);

#endif
