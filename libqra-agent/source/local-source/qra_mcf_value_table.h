#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_VALUE_TABLE_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_VALUE_TABLE_H

#include <string_view>
#include <unordered_map>
#include <variant>

#include "media_content.h"

/// A getter of the platform. The alternative that is set is the entry's func type.
using mcf_get_function = std::variant<int (*)(media_info_h, int*),                 // 0
                                      int (*)(image_meta_h, int*),                 // 1
                                      int (*)(video_meta_h, int*),                 // 2
                                      int (*)(audio_meta_h, int*),                 // 3
                                      int (*)(media_pvr_h, int*),                  // 4
                                      int (*)(media_uhd_h, int*),                  // 5
                                      int (*)(media_info_h, char**),               // 6
                                      int (*)(image_meta_h, char**),               // 7
                                      int (*)(audio_meta_h, char**),               // 8
                                      int (*)(media_pvr_h, char**),                // 9
                                      int (*)(media_uhd_h, char**),                // 10
                                      int (*)(media_folder_h, char**),             // 11
                                      int (*)(media_info_h, bool*),                // 12
                                      int (*)(media_pvr_h, bool*),                 // 13
                                      int (*)(media_info_h, unsigned long long*),  // 14
                                      int (*)(media_pvr_h, unsigned long long*),   // 15
                                      int (*)(media_uhd_h, unsigned long long*),   // 16
                                      int (*)(media_info_h, double*),              // 17
                                      int (*)(image_meta_h, double*),              // 18
                                      int (*)(media_info_h, time_t*),              // 19
                                      int (*)(media_folder_h, time_t*),            // 20
                                      int (*)(media_uhd_h, time_t*)>;              // 21

/// A setter of the platform, numbered on its own.
using mcf_set_function = std::variant<int (*)(media_info_h, int),          // 0
                                      int (*)(media_pvr_h, int),           // 1
                                      int (*)(media_uhd_h, int),           // 2
                                      int (*)(media_info_h, const char*),  // 3
                                      int (*)(media_pvr_h, const char*),   // 4
                                      int (*)(media_uhd_h, const char*),   // 5
                                      int (*)(media_pvr_h, bool),          // 6
                                      int (*)(media_info_h, time_t)>;      // 7

using mcf_get_table = std::unordered_map<std::string_view, mcf_get_function>;
using mcf_set_table = std::unordered_map<std::string_view, mcf_set_function>;

/// Which getters and setters of the platform stand behind the value keys. Constant, and never destroyed; any
/// thread may read, also while the process ends.
class CQRAMCFValueTable {
public:
    /// For every row of the media table, whatever its kind.
    static const mcf_get_table& GetCommon();
    static const mcf_get_table& GetImage();
    static const mcf_get_table& GetVideo();
    static const mcf_get_table& GetAudio();
    static const mcf_get_table& GetPVR();
    static const mcf_get_table& GetUHD();
    static const mcf_get_table& GetFolder();

    static const mcf_set_table& SetMedia();
    static const mcf_set_table& SetPVR();
    static const mcf_set_table& SetUHD();
};

#endif
