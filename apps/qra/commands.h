#ifndef QRA_APPS_QRA_COMMANDS_H
#define QRA_APPS_QRA_COMMANDS_H

struct CommandLine;

// The commands of the tool. Each prints its answer to stdout and throws CommandError when it cannot give one.

void run_attach(const CommandLine& line);
void run_detach(const CommandLine& line);
void run_storages(const CommandLine& line);
void run_scan(const CommandLine& line);
void run_devices(const CommandLine& line);
void run_check_device(const CommandLine& line);
void run_thumbs(const CommandLine& line);
void run_list(const CommandLine& line);
void run_remote_list(const CommandLine& line);
void run_detail(const CommandLine& line);
void run_like(const CommandLine& line);
void run_comment(const CommandLine& line);
void run_get(const CommandLine& line);
void run_package(const CommandLine& line);
void run_copy(const CommandLine& line);
void run_delete(const CommandLine& line);
void run_account_add(const CommandLine& line);
void run_account_list(const CommandLine& line);
void run_account_remove(const CommandLine& line);
void run_camera_list(const CommandLine& line);
void run_camera_files(const CommandLine& line);
void run_camera_get(const CommandLine& line);
void run_camera_thumb(const CommandLine& line);
void run_playlist_list(const CommandLine& line);
void run_playlist_new(const CommandLine& line);
void run_playlist_show(const CommandLine& line);
void run_playlist_add(const CommandLine& line);
void run_playlist_remove(const CommandLine& line);
void run_playlist_rename(const CommandLine& line);
void run_playlist_delete(const CommandLine& line);
void run_playlist_check(const CommandLine& line);
void run_playlist_export(const CommandLine& line);
void run_playlist_import(const CommandLine& line);
void run_dlna_servers(const CommandLine& line);
void run_dlna_get(const CommandLine& line);
void run_dlna_put(const CommandLine& line);
void run_dlna_bookmark(const CommandLine& line);

#endif
