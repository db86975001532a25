#ifndef QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_XML_CHECK_H
#define QRA_LIBQRA_AGENT_SOURCE_SCSA_QRA_DMP_XML_CHECK_H

#include <string_view>

/**
 * Whether libxml2 can read a text in a time that grows with its size alone. With the number of attributes of
 * one element and with the length of one tag its time grows by the square, and with the number of names by
 * that of the namespaces around them: half a megabyte of attributes takes it many seconds, and a package may
 * bring a hundred times that.
 *
 * True for any text of up to 2 KB: a package may bring a thousand of them. A longer one must be in UTF-8,
 * UTF-16 or another encoding that can be looked through as it is, without a document type that declares
 * anything, which could add attributes to every element, with tags of at most 32 KB and 256 attributes, and
 * with at most 1,024 declarations of namespaces, fewer where its names are many.
 */
bool IsReadableInTime(std::string_view text);

#endif
