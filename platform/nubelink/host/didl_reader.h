#ifndef QRA_NUBELINK_DIDL_READER_H
#define QRA_NUBELINK_DIDL_READER_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/nubelink/host/item_record.h"

namespace nbl {

/**
 * Reads the objects of a DIDL-Lite document, in its order.
 *
 * Every child element of an object becomes a property by its name. "dc:" and "upnp:" stand for the namespaces
 * of the standard, whatever prefix the document uses; other prefixes are the document's. Of several <res> the
 * one that suits a player best is kept: fetched by http, not converted by the server, the largest picture;
 * small ones of the others become the thumbnail, subtitles the subtitle.
 *
 * The document comes from a stranger: where it is broken, the objects that can be understood are read all the
 * same, and an object that lies inside another one is left out.
 *
 * @param document  UTF-8 as mend_xml() leaves it
 * @param provider  the server that it comes from
 * @param items     the objects are appended to it
 * @param most      objects that are read; the rest is passed over
 * @return whether it was well-formed to its end; an empty document is
 */
bool read_didl(std::string_view document, nbl_provider_t provider, std::vector<ItemPtr>& items,
               size_t most = SIZE_MAX);

}  // namespace nbl

#endif
