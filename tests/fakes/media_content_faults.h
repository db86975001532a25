#ifndef QRA_TESTS_FAKES_MEDIA_CONTENT_FAULTS_H
#define QRA_TESTS_FAKES_MEDIA_CONTENT_FAULTS_H

#include <functional>
#include <string>

/**
 * Stands between the agent and the real media database and metadata extractor, and makes calls fail.
 *
 * A test program that links media-content-faults calls the functions of this unit instead of the platform's;
 * each goes on to the real one, unless it is to fail. A call that fails touches no out-argument; a call that
 * releases something releases it and fails then. Any thread may call anything.
 */
namespace media_content_faults {

/// What a call that was made to fail answers.
constexpr int kFailure = 4711;

/// Forgets all counts and lets everything work again; releases the scans that were held and not answered.
void reset();

/// Lets the n-th call from now on fail, 1 being the next one; 0 lets none fail.
void fail_call(int n);

/// Lets every call of a function fail, from now on.
void fail(const std::string& function);

/// Lets every call of a function fail after the real one has done its work.
void fail_afterwards(const std::string& function);

/// Calls of all functions since the last reset() or fail_call().
int calls();

/// Calls of one function since the last reset().
int count(const std::string& function);

/// The function whose call fail_call() let fail; empty if it came to none.
std::string failed();

/// Calls `action` in front of each call of a function, on the calling thread.
void before(const std::string& function, std::function<void()> action);

/// Lets media_info_get_media_type give this type for all rows.
void set_media_type(int type);

/// Lets media_pvr_get_pvr_from_db and media_uhd_get_uhd_from_db succeed and give no row.
void give_no_row();

/// Scans no longer reach the real scanner but wait for answer_scan().
void hold_scans();

/// Waits for a scan that is held; false if none came within a minute.
bool wait_for_scan();

/// Answers the scan that is held, on this thread. After a last answer it is held no more.
void answer_scan(int error, int phase);

}  // namespace media_content_faults

#endif
