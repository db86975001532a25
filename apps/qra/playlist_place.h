#ifndef QRA_APPS_QRA_PLAYLIST_PLACE_H
#define QRA_APPS_QRA_PLAYLIST_PLACE_H

#include <string>

#include "apps/qra/open_playlist.h"

struct CommandLine;

/// The one playlist of internal storage that can be opened again, and its file.
constexpr char kInternalName[] = ".bgm";
constexpr char kInternalFile[] = ".bgm.m3u";

/// Where the playlists of a command lie: the mount path of the folder's drive, which is attached where it is
/// on none, or the folder itself with --internal.
std::string playlist_directory(const CommandLine& line);

/// What a playlist's file gives back of a name: no colon, no line feed, no blanks at its end.
/// @throws CommandError where nothing is left
std::string kept_name(const std::string& name);

/// Says so where a name that was asked for is not the one that is kept.
void tell_other_name(const std::string& asked, const std::string& kept);

/// The playlist that a command names. @throws CommandError for one that internal storage cannot have
PlaylistPlace playlist_place(const CommandLine& line);

#endif
