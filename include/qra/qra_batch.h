/**
 * @file qra_batch.h
 * Batch jobs: copy or delete the selection of an open list, on a thread of the library, with reports.
 *
 * @section qra_batch_life The life of a job
 *
 * A client opens a list (qra_agent.h), selects tiles, switches the cursor of that list to the selection and
 * starts a job on it:
 *
 *     qra_set_navigation_v2(list, QRA_NAVIGATION_TYPE_SELECTED);
 *     qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, param, list, user_data, &job);
 *
 * The job goes through the selected items in the order of the list, reports what it does through the
 * callback, and ends by itself. The client then calls qra_stop_batch_process_v2(), also after a normal end:
 * it is what waits for the job's thread and releases the handle.
 *
 * @section qra_batch_navigation The cursor has to walk the selection
 *
 * A job asks the list for its items by number, through the list's own cursor. While the cursor walks the
 * selection (QRA_NAVIGATION_TYPE_SELECTED), number N is the Nth selected item. In QRA_NAVIGATION_TYPE_ALL
 * number N is tile N of the page, selected or not: a job on three selected tiles then copies, or deletes, the
 * first three tiles of the page. The library does not switch the navigation, and does not look at it.
 *
 * @section qra_batch_list The list while a job runs
 *
 * Until qra_stop_batch_process_v2() has returned the list belongs to the job: the client calls no function of
 * qra_agent.h on its handle, and above all does not disconnect it. Another list, also of the same folder, can
 * be used freely, and jobs on different lists run beside each other.
 *
 * @section qra_batch_events Events
 *
 * The callback runs on the job's thread, which waits for it to return.
 *
 * | Event | When |
 * |---|---|
 * | QRA_EVENT_BATCH_PROGRESS | during a copy; at most one in 300 ms for all jobs of the process together |
 * | QRA_EVENT_BATCH_FILE_DONE | an item is done; a copied file is on the disk by then |
 * | QRA_EVENT_BATCH_FAILED | an item failed, and the job is over; the items after it are untouched |
 * | QRA_EVENT_BATCH_FINISHED | all items were gone through, and the job is over |
 *
 * A job that is stopped between two items sends nothing any more. A copy that is stopped within a file sends
 * QRA_EVENT_BATCH_FAILED for it.
 */
#ifndef QRA_QRA_BATCH_H
#define QRA_QRA_BATCH_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Size of the field for a file's name, with its terminator. */
#define QRA_SHARE_FILE_NAME_SIZE 4096

/** How far a batch job is, as it reaches qra_share_cb. Valid during the call only. */
struct qra_share_status_info_s {
    int nTotalCount;    /**< selected items */
    int nFinishedCount; /**< items done so far; with QRA_EVENT_BATCH_FAILED the number, from 0, of the failed
                           one */
    int nReserved1;     /**< 0 */
    int nReserved2;     /**< 0 */
    unsigned long long
        llProgressedTotalSize; /**< bytes copied by the whole job, without those of a failed file */
    unsigned long long
        llCurFileSize; /**< size of the current file as the media database has it; copies only */
    unsigned long long
        llProgressedFileSize; /**< bytes of it copied; more than its size where it has grown since */
    char szFileName[QRA_SHARE_FILE_NAME_SIZE]; /**< name of the current file; one that is empty or too long
                                                  for the field leaves the name before it */
};

/**
 * Starts a job on the selection of a list, whose navigation has to be QRA_NAVIGATION_TYPE_SELECTED.
 *
 * A copy takes every item to the destination's folder of its kind, "PHOTO", "VIDEO", "MUSIC" or "CONTENTS"
 * for recordings, under a name that collides with nothing, together with the subtitles of a video and the
 * companions of a recording, and enters it in the media database. A name without an extension is given
 * ".jpg". A delete removes the files, the same companions, and the rows of the database.
 *
 * The first callback may come before this call has returned; `*ppHandle` holds the job by then, but it can
 * only be stopped once the call has returned.
 *
 * @param eType     QRA_PROCESSOR_TYPE_COPY or QRA_PROCESSOR_TYPE_DELETE
 * @param pParam    the job (qra_create_share_param()); read during the call only. A copy takes its
 * destination from `dest_dev_path`, the path of a directory, and what it reads from `source_dev_type`
 * @param hAgent    the list. It has to stay open, and is not to be used, until the job has been stopped
 * @param pUserData the callback and its user data (qra_create_share_user_data_param()); read during the call
 * only
 * @param ppHandle  receives the job on success, and null on a failure from the job's start on
 * @retval QRA_ERROR_NONE           the job runs
 * @retval QRA_ERROR_INVALID_HANDLE `hAgent` is no live list
 * @retval QRA_ERROR_INVALID_PARAM  another `eType`; an argument or the callback is null; the destination is
 * no directory; the list is not one of a source of this process
 * @retval QRA_ERROR_THREAD_FAILED  the system gave no thread
 */
QRA_API qra_error_code_e qra_batch_process_v2(qra_processor_type_e eType, qra_share_s* pParam,
                                              qra_agent_handler_h hAgent, qra_share_user_data_s* pUserData,
                                              CQRASendHandle** ppHandle);

/**
 * qra_stop_batch_process_v3() with QRA_STOP_TYPE_REMOVE.
 * @param pHandle the job
 * @return as qra_stop_batch_process_v3()
 */
QRA_API qra_error_code_e qra_stop_batch_process_v2(CQRASendHandle* pHandle);

/**
 * Ends a job if it still runs, waits for its thread, and destroys the handle.
 *
 * A copy ends within one block of 64 KiB of a main file, a companion file is copied to its end. No callback
 * of the job comes any more when the call has returned. To be called once for each job, from a thread that
 * the job's callback does not wait for.
 *
 * @param pHandle the job
 * @param eType   what becomes of a file that is copied in part; a delete does not look at it
 * @retval QRA_ERROR_NONE           the job is over and the handle gone
 * @retval QRA_ERROR_INVALID_HANDLE no live job
 * @retval QRA_ERROR_THREAD_FAILED  called from the job's own callback: nothing happened, the job goes on
 */
QRA_API qra_error_code_e qra_stop_batch_process_v3(CQRASendHandle* pHandle, qra_stop_type_e eType);

#ifdef __cplusplus
}
#endif

#endif
