#ifndef QRA_TESTS_INTEGRATION_CAMERA_LIST_H
#define QRA_TESTS_INTEGRATION_CAMERA_LIST_H

#include <qra/qra_content_agent.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

/// A list of a camera, as a client of the exported functions has it. No call but wait() waits for the camera.
class CameraList {
public:
    struct Request {
        int device = 1;
        std::string folder = {};  ///< "" for all pictures in a row
        std::string content_type = "CONTENT-FOLDER";
        std::string extension = {};
    };

    explicit CameraList(const Request& request);
    ~CameraList() { disconnect(); }
    CameraList(const CameraList&) = delete;
    CameraList& operator=(const CameraList&) = delete;

    bool accepted() const { return handle_ != nullptr; }
    /// Waits for the answer and lays out a page; the event, or -1 if none came.
    int wait();
    /// What the answer was, -1 without one.
    int event();
    void disconnect();

    int tiles() const;
    std::string text(int tile, const char* field) const;
    int number(int tile, const char* field) const;
    std::vector<std::string> names() const;
    /// The media id of the tile with a name, "" without one.
    std::string id_of(const std::string& name) const;
    /// The tile's JSON text.
    std::string item(int tile) const;

    /// Copies the tiles to a folder; the event with which the job ended, or -1.
    int copy_all(const std::string& destination);

private:
    static bool on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*);
    static bool on_share(void* self, CQRASendHandle*, qra_event_e event, qra_share_status_info_s*);
    int wait_for_event();

    qra_agent_handler_h handle_ = nullptr;
    std::mutex mutex_;
    std::condition_variable changed_;
    int event_ = -1;
};

#endif
