/**
 * @file qra_device_check.h
 * Device checks: have the content engine scan a drive, and be told when it is done.
 *
 * A check is a scan by the engine, whose result goes into the media database: lists, views of the whole drive
 * and folder thumbnails find it there. The engine is started where it does not run; where a system bus is
 * there but no engine, starting a check takes up to 40 seconds before it fails.
 *
 * @section qra_device_check_threads Threads and the main loop
 *
 * Both functions may be called from any thread. The callback comes on the thread that runs the GLib main
 * context which was the default of the thread that started the check; the client has to run that loop, else
 * the callback never comes. No lock is held while it runs: it may call every function of the library, both of
 * this header included.
 *
 * The engine's signal "qra_scanner_done" is delivered once for each device check that this process has
 * started so far, one whose start the engine refused included. So the callback of the first check comes once,
 * that of the second check twice, and so on. A client that stops the check in its callback gets it once.
 */
#ifndef QRA_QRA_DEVICE_CHECK_H
#define QRA_QRA_DEVICE_CHECK_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Tells how a device check went.
 *
 * @param pUserData what the client gave with the check
 * @param pHandle   the check's handle
 * @param eEvent    the engine's number of what happened
 * @param pData     the engine's text, valid during the call only; may be null
 * @return not looked at
 */
typedef bool (*qra_device_check_cb)(void* pUserData, CQRADeviceCheckHandle* pHandle, qra_event_e eEvent,
                                    const char* pData);

/**
 * Has the engine scan a device. Waits until the engine has taken the order, not for the scan.
 *
 * The check stays open after its callback has come: the client ends it with qra_stop_checking_device_v2().
 *
 * @param pPath     where the device's files are; stays the client's
 * @param cb        receives the result, possibly before this call has returned
 * @param pUserData handed to `cb` as it is; null allowed
 * @param ppHandle  receives the check's handle; left as it was on failure
 * @retval QRA_ERROR_NONE          the scan was started
 * @retval QRA_ERROR_INVALID_PARAM `pPath`, `cb` or `ppHandle` is null; or the path is no UTF-8 text
 * @retval QRA_ERROR_ENGINE        the engine cannot be reached or did not answer
 * @retval QRA_ERROR_INTERNAL      the engine refused the scan
 */
QRA_API qra_error_code_e qra_check_device_v2(const char* pPath, qra_device_check_cb cb, void* pUserData,
                                             CQRADeviceCheckHandle** ppHandle);

/**
 * Ends a device check, and its scan if that still runs. The handle is gone after the call, whatever it gives
 * but QRA_ERROR_INVALID_HANDLE.
 *
 * Waits for a callback of this check that runs on another thread, so that none runs or comes any more when
 * the call has returned; a caller must not hold a lock that its callback takes. Called from inside a device
 * check callback it does not wait.
 *
 * @param pHandle  the check
 * @retval QRA_ERROR_NONE           ended
 * @retval QRA_ERROR_INVALID_HANDLE no device check, or one that was stopped before
 * @retval QRA_ERROR_ENGINE         ended, but the engine did not answer
 */
QRA_API qra_error_code_e qra_stop_checking_device_v2(CQRADeviceCheckHandle* pHandle);

#ifdef __cplusplus
}
#endif

#endif
