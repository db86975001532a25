/**
 * @file nubelink.h
 * The home network: its media servers, what they hold, and transfers from and to them.
 *
 * **Start and end.** nbl_serviceconnector_connect() starts the service and gives a service provider, which
 * gives the device finder. The finder lists the servers and reports those that come and go; by a server's id
 * it gives the server's provider, which takes all requests. nbl_serviceconnector_disconnect() ends the
 * service: requests and transfers that are open are answered with NBL_ERROR_NOT_CONNECTED first.
 *
 * **Threads.** Every function may be called from any thread, from inside a callback too. None of them waits
 * for the network but nbl_devicefinder_get_device_list(), as told there. All callbacks run on one thread of
 * the service, one after the other, and never from inside the call that asked for them: a caller may hold a
 * lock there that the callback takes. A callback holds up all others, so it should be short.
 *
 * **Requests.** A call that starts a request returns NBL_ERROR_NONE and a token above 0, or an error, no
 * token and no answer. A started request is answered exactly once - a search with one answer or more, of
 * which the last has its end flag - whatever happens: after an error, a cancel, the loss of the server or the
 * end of the service too. A server that says nothing is answered for within 15 seconds. The answer of a
 * cancelled request comes with NBL_ERROR_CANCELLED, after the call that cancels it has returned or meanwhile:
 * `user_data` has to live until the answer. Requests may be answered in another order than they were made; at
 * least five to one server are under way at a time, more wait for their turn while their deadline runs.
 * A null callback is refused.
 *
 * **Memory.** Handles and texts that belong to the service are said so, with how long they live. Texts that
 * come out as `char**` are the caller's, UTF-8, released with free(). What a callback is given is valid until
 * it returns; an item is kept with nbl_item_copy().
 *
 * **Errors.** Every function returns NBL_ERROR_NONE or another nbl_error_e. Null handles, null texts and null
 * out arguments are NBL_ERROR_INVALID_PARAMETER, unless null is said to be allowed. On an error a `char**`
 * out argument is set to null and other out arguments are left alone.
 */
#ifndef QRA_PLATFORM_NUBELINK_H
#define QRA_PLATFORM_NUBELINK_H

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Results of functions, and the errors in callbacks. */
enum nbl_error_e {
    NBL_ERROR_NONE = 0,
    NBL_ERROR_INVALID_PARAMETER = 1,
    NBL_ERROR_FAILED = 2, /**< not done, for no other reason of this list */
    NBL_ERROR_OUT_OF_MEMORY = 3,
    NBL_ERROR_NOT_CONNECTED = 4,  /**< the service is not started, or has ended meanwhile */
    NBL_ERROR_NO_DATA = 5,        /**< the item has no such value */
    NBL_ERROR_NOT_SUPPORTED = 6,  /**< the server does not know such a request */
    NBL_ERROR_ITEM_NOT_EXIST = 7, /**< the server has no object of that id, or no longer */
    NBL_ERROR_TIMEOUT = 8,        /**< no answer in time */
    NBL_ERROR_CANCELLED = 9,
    NBL_ERROR_DEVICE_GONE = 10, /**< the server is not there, or has gone meanwhile */
    NBL_ERROR_NETWORK = 11,     /**< the server could not be reached, or the connection broke */
    NBL_ERROR_BAD_ANSWER =
        12,                 /**< the server's answer cannot be understood, or is larger than any honest one */
    NBL_ERROR_REFUSED = 13, /**< the server answered with an error of its own */
    NBL_ERROR_FILE = 14     /**< a local file or FIFO could not be opened, read or written */
};

/** Connection states. */
enum nbl_serviceconnector_state_e {
    NBL_SERVICECONNECTOR_DISABLED = 0,
    NBL_SERVICECONNECTOR_ENABLED = 1,
    NBL_SERVICECONNECTOR_FAILED = 2 /**< the service cannot run on this host */
};

/** States of the service. */
enum nbl_service_state_e { NBL_SERVICE_STATE_DISABLED = 0, NBL_SERVICE_STATE_ENABLED = 1 };

/** Classes of devices that a finder can be asked for. There are no others here. */
enum nbl_device_class_e { NBL_DEVICE_CLASS_MEDIA_SERVER = 4 };

/** What happened to a device. */
enum nbl_device_event_e {
    NBL_DEVICE_EVENT_ADDED = 1,
    NBL_DEVICE_EVENT_REMOVED = 2,
    NBL_DEVICE_EVENT_CHANGED = 3 /**< the same device, by its id, has other addresses or another name */
};

/** Types of items; add_item_type() takes the last three. */
enum nbl_item_type_e {
    NBL_ITEM_TYPE_OTHER = 0, /**< neither a folder nor a medium: a text, a playlist file */
    NBL_ITEM_TYPE_FOLDER = 1,
    NBL_ITEM_TYPE_IMAGE = 2,
    NBL_ITEM_TYPE_MUSIC = 4,
    NBL_ITEM_TYPE_VIDEO = 8
};

/** How a player may jump in an item; the bits may come together. */
enum nbl_seek_mode_e { NBL_SEEK_MODE_NONE = 0, NBL_SEEK_MODE_BYTES = 1, NBL_SEEK_MODE_TIME = 2 };

/** States of a download. */
enum nbl_download_state_e {
    NBL_DOWNLOAD_STATE_PROGRESS = 2,
    NBL_DOWNLOAD_STATE_COMPLETE = 3,
    NBL_DOWNLOAD_STATE_CANCELLED = 4,
    NBL_DOWNLOAD_STATE_FAILED = 5
};

/** Who sorts a server's content, see nbl_provider_get_feature_list(). */
enum nbl_feature_source_e {
    NBL_FEATURE_SOURCE_NONE = 0,   /**< nobody: the server has no such containers and no search */
    NBL_FEATURE_SOURCE_SERVER = 1, /**< the server names its containers */
    NBL_FEATURE_SOURCE_SERVICE = 2 /**< the service makes the containers from the server's search */
};

/** The running service. The same one for the whole process; it belongs to the service and lives on. */
typedef void* nbl_serviceprovider_t;
/** Finds devices. One for the whole process; it belongs to the service and lives on. */
typedef void* nbl_devicefinder_t;
/** A device as it was when it was last announced; immutable. */
typedef struct nbl_device_s* nbl_device_t;
/**
 * The way to one server, by its id. Belongs to the service and lives to the end of the process: it survives
 * the server's going, its coming back with another address, and the end and new start of the service.
 */
typedef struct nbl_provider_s* nbl_provider_t;
/** An object of a server, or content to be sent to one: an immutable record with a reference count. */
typedef struct nbl_item_s* nbl_item_t;
/** What a search asks for. */
typedef struct nbl_searchcriteria_s* nbl_searchcriteria_t;
/** A feature that a server announces. */
typedef struct nbl_feature_s* nbl_feature_t;
/** A container of a feature. */
typedef struct nbl_container_s* nbl_container_t;

/* ------------------------------------------------------------------------------------------- the service */

/**
 * Tells how the connection stands.
 *
 * @param provider   the service provider; null unless `state` is NBL_SERVICECONNECTOR_ENABLED
 * @param state      one of nbl_serviceconnector_state_e
 * @param user_data  what was given with the callback
 */
typedef void (*nbl_serviceconnector_cb)(nbl_serviceprovider_t provider, int state, void* user_data);

/**
 * Starts the service, and the search for devices. Starting it while it runs is no error: `callback` is told
 * that it runs. Starts are not counted.
 *
 * @param callback   called once; told NBL_SERVICECONNECTOR_DISABLED if the service is ended before it starts
 * @return NBL_ERROR_NONE: `callback` will be called; NBL_ERROR_INVALID_PARAMETER; NBL_ERROR_FAILED: no thread
 */
int nbl_serviceconnector_connect(nbl_serviceconnector_cb callback, void* user_data);

/**
 * Ends the service: open requests and transfers are answered, the list of devices is empty, no device event
 * comes any more, and then `callback` is told NBL_SERVICECONNECTOR_DISABLED. The finder's event callback is
 * forgotten.
 *
 * @param callback   called once, last of all; null is allowed
 * @return NBL_ERROR_NONE; NBL_ERROR_FAILED (2) if the service is not started: `callback` is not called
 */
int nbl_serviceconnector_disconnect(nbl_serviceconnector_cb callback, void* user_data);

/** Gives a nbl_service_state_e. @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER */
int nbl_serviceprovider_get_service_state(nbl_serviceprovider_t provider, int* state);

/** Gives the finder. @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED */
int nbl_serviceprovider_get_devicefinder(nbl_serviceprovider_t provider, nbl_devicefinder_t* finder);

/* ------------------------------------------------------------------------------------------- devices */

/** A device came, went or changed. Valid during the callback. */
typedef struct nbl_device_event {
    int event;           /**< one of nbl_device_event_e */
    nbl_device_t device; /**< never null */
} nbl_device_event;

/**
 * @param event         what happened
 * @param common_event  0; kept for services that report more
 * @param error         NBL_ERROR_NONE
 * @param user_data     what was given with the callback
 */
typedef void (*nbl_devicefinder_event_cb)(nbl_device_event* event, int common_event, int error,
                                          void* user_data);

/**
 * Sets whom to call when a device comes or goes. There is one callback: another one takes its place, null
 * takes it away. Devices that are already there are not reported; they are in the list. A callback that is
 * running on the service's thread is not waited for.
 *
 * @param device_class  NBL_DEVICE_CLASS_MEDIA_SERVER
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_devicefinder_set_event_callback(nbl_devicefinder_t finder, int device_class,
                                        nbl_devicefinder_event_cb callback, void* user_data);

/**
 * Searches the network anew, without waiting for what it finds: new devices are reported by events, within
 * about a second. A device that no longer answers goes when what it announced runs out.
 *
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_devicefinder_refresh(nbl_devicefinder_t finder);

/**
 * Gives the devices that are there, in the order in which they came.
 *
 * Just after the start of the service it waits until the first search is over, 1.5 seconds at most, so that
 * the first list is complete; from inside a callback it never waits.
 *
 * @param device_class  NBL_DEVICE_CLASS_MEDIA_SERVER
 * @param devices       receives an array that is never null, also for none. It and its devices belong to the
 *                      service, and live until the calling thread calls this function again or ends
 * @param count         receives how many there are
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_devicefinder_get_device_list(nbl_devicefinder_t finder, int device_class, nbl_device_t** devices,
                                     int* count);

/**
 * Gives the provider of a device.
 *
 * @param device_class  NBL_DEVICE_CLASS_MEDIA_SERVER
 * @param device_id     as nbl_device_get_id() gives it
 * @param provider      receives the provider, the same one for the same id
 * @return NBL_ERROR_NONE; NBL_ERROR_INVALID_PARAMETER; NBL_ERROR_NOT_CONNECTED; NBL_ERROR_DEVICE_GONE if no
 *         device of that id is there
 */
int nbl_devicefinder_get_device(nbl_devicefinder_t finder, int device_class, const char* device_id,
                                nbl_provider_t* provider);

/** Gives the device's id, unique in the network and for all time. The text lives as long as the device. */
int nbl_device_get_id(nbl_device_t device, const char** id);
/** Gives the address by which the device is reached, as it was announced: a number. The text lives as long as
 * the device. */
int nbl_device_get_ip_address(nbl_device_t device, const char** address);
/** Gives all addresses under which the device was announced, the one that is used first. */
int nbl_device_get_ip_address_list(nbl_device_t device, const char* const** addresses, int* count);
/** Gives the name for people. May be empty. The text lives as long as the device. */
int nbl_device_get_name(nbl_device_t device, const char** name);
/** Gives the maker's name. May be empty. The text lives as long as the device. */
int nbl_device_get_manufacturer_name(nbl_device_t device, const char** name);

/* ------------------------------------------------------------------------------------------- requests */

/** An answer of a browse or a search. Valid during the callback, and so are its items. */
typedef struct nbl_response {
    int token;         /**< the request's */
    nbl_item_t* items; /**< null for none */
    int length;        /**< how many items */
    int end;           /**< 1 with the last answer of the request, else 0; always 1 but for a search */
    int start;         /**< place of the first item in the folder, or in all that the search finds */
    int total;         /**< what the server says there is in all; 0 if it does not say. It may lie */
} nbl_response;

/**
 * Answers nbl_provider_browse(), nbl_provider_browse_item() and nbl_provider_search().
 *
 * @param device     the server; null if it is not there
 * @param response   never null; on an error it has no items, and its end flag is 1
 * @param error      an nbl_error_e
 * @param user_data  what was given with the callback
 */
typedef void (*nbl_provider_cb)(nbl_device_t device, nbl_response* response, int error, void* user_data);

/** Makes an item for the server's topmost folder, whose id is "0". @param item  the caller's: nbl_item_free()
 */
int nbl_provider_get_root_folder(nbl_provider_t provider, nbl_item_t* item);

/**
 * Makes an item for a folder of that id, without asking a server: it has its id, the type folder, and no
 * other value.
 *
 * @param id    as nbl_item_get_content_id() gave it; not empty
 * @param item  the caller's: nbl_item_free()
 */
int nbl_item_create_provider_item(const char* id, nbl_item_t* item);

/**
 * Asks for the children of a folder.
 *
 * The answer holds `count` children wherever the folder has that many after `start`: a server that gives
 * fewer at a time is asked again. It holds fewer at the folder's end, and none beyond it. A server that
 * repeats an earlier page instead of going on is answered for with no items.
 *
 * @param item   the folder
 * @param start  place of the first child, from 0
 * @param count  how many children at most, from 1; more than 1,000 are not given at once
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_provider_browse(nbl_provider_t provider, nbl_item_t item, int start, int count,
                        nbl_provider_cb callback, void* user_data, int* token);

/**
 * Asks for one object. The answer holds one item. A folder's child count is there even if the server leaves
 * it out: the service asks for it then. Where the server does not know it, or says two things, the service
 * looks for the folder's end. What that does not find out in time, or beyond a million, is counted as a
 * million: there may be fewer.
 *
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_provider_browse_item(nbl_provider_t provider, const char* id, nbl_provider_cb callback,
                             void* user_data, int* token);

/**
 * Searches the whole server. Everything from `start` on that is found is delivered, in answers of at most
 * `count` items; the last one, which may be empty, has the end flag. An error ends the search with what was
 * delivered.
 *
 * @param criteria  may be freed when the call returns
 * @param count     items in an answer at most, from 1 to 1,000
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_provider_search(nbl_provider_t provider, nbl_searchcriteria_t criteria, int start, int count,
                        nbl_provider_cb callback, void* user_data, int* token);

/**
 * Makes search criteria: items whose title holds the keyword. An empty keyword matches all.
 *
 * @param criteria  the caller's: nbl_searchcriteria_free()
 */
int nbl_searchcriteria_create(const char* keyword, nbl_searchcriteria_t* criteria);
/** Adds a type that is asked for: NBL_ITEM_TYPE_IMAGE, NBL_ITEM_TYPE_MUSIC or NBL_ITEM_TYPE_VIDEO. None means
 * all. */
int nbl_searchcriteria_add_item_type(nbl_searchcriteria_t criteria, int type);
/** Frees criteria; null is allowed. */
void nbl_searchcriteria_free(nbl_searchcriteria_t criteria);

/** The features of a server. Valid during the callback, with all that it leads to. */
typedef struct nbl_feature_response {
    int token;               /**< the request's */
    nbl_feature_t* features; /**< null for none */
    int length;              /**< how many features */
    int source;              /**< an nbl_feature_source_e: whose the containers of the feature "DCM" are */
} nbl_feature_response;

/**
 * Answers nbl_provider_get_feature_list().
 *
 * @param device     the server; null if it is not there
 * @param response   never null; on an error it has no features
 * @param error      an nbl_error_e. A server that has no features is no error: the list is empty
 * @param user_data  what was given with the callback
 */
typedef void (*nbl_feature_cb)(nbl_device_t device, nbl_feature_response* response, int error,
                               void* user_data);

/**
 * Asks for the features of a server. Of interest is one whose name contains "DCM": its containers show the
 * server's content in an order. "I_N" and "I_L" are pictures by title and by date, "V_T" and "V_L" videos by
 * title and by date, "A_M", "A_A", "A_L" and "A_G" music by track, by artist, by album and by genre. Their
 * ids are used like those of any folder. A server that does not name such containers but can search is given
 * them by the service.
 *
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_provider_get_feature_list(nbl_provider_t provider, nbl_feature_cb callback, void* user_data,
                                  int* token);

/** Gives a feature's name, and how many containers it has. The text lives as long as the feature. */
int nbl_feature_get_details(nbl_feature_t feature, const char** name, int* container_count);
/** Gives a feature's containers. The array, null for none, lives as long as the feature. */
int nbl_feature_get_container_list(nbl_feature_t feature, nbl_container_t** containers, int* count);
/** Gives a container's id. The text lives as long as the container's feature. */
int nbl_container_get_details(nbl_container_t container, const char** id);

/**
 * Cancels a browse, a search or a feature request. Its answer comes all the same, with NBL_ERROR_CANCELLED,
 * unless it was on its way already.
 *
 * @param token  of a request that was started; one that has been answered already is no error
 * @return NBL_ERROR_NONE; NBL_ERROR_INVALID_PARAMETER for a number that never was a token
 */
int nbl_provider_cancel_async_action(int token);

/**
 * Answers nbl_provider_set_bookmark().
 *
 * @param device  the server; null if it is not there
 * @param error   an nbl_error_e
 * @param tag     what was given to nbl_provider_set_bookmark()
 */
typedef void (*nbl_bookmark_cb)(nbl_device_t device, int error, int tag);

/**
 * Keeps the position at which an item was left: at the server, if it has a place for it, else by the service,
 * for this device and content id. nbl_item_get_bookmark() of an item that is browsed afterwards gives it.
 *
 * @param seconds   from the start, 0 or more; 0 forgets the position
 * @param callback  called once; null is allowed
 * @param tag       given back to the callback; 65535 means nothing in particular
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED
 */
int nbl_provider_set_bookmark(nbl_provider_t provider, nbl_item_t item, int seconds, nbl_bookmark_cb callback,
                              int tag);

/* ------------------------------------------------------------------------------------------- transfers */

/** How far a transfer is. Valid during the callback. */
typedef struct nbl_transfer_info {
    int state; /**< of a download: an nbl_download_state_e; of an upload: progress or complete */
    int error; /**< why it failed, an nbl_error_e; NBL_ERROR_NONE otherwise */
    unsigned long long received; /**< bytes so far; of an upload: bytes sent */
    unsigned long long total;    /**< bytes in all; 0 if it is not known */
} nbl_transfer_info;

/**
 * Tells how a download goes: any number of times NBL_DOWNLOAD_STATE_PROGRESS, then once one of the other
 * states, and nothing more.
 */
typedef void (*nbl_download_cb)(int token, nbl_transfer_info* info, void* user_data);

/**
 * Fetches a file from a server of the home network.
 *
 * The file has its name from the start and is removed if the download fails or is cancelled. Redirects lead
 * to http and https only. A transfer in which nothing arrives for 15 seconds has failed.
 *
 * @param uri          as nbl_item_get_uri() gives it: http or https; anything else is
 * NBL_ERROR_INVALID_PARAMETER
 * @param mimetype     as nbl_item_get_mimetype() gives it: an answer of the type text/html where another one
 * is named here is a server's error page, and fails. Null is allowed: not known
 * @param path         where to write; a file that is there already is replaced
 * @param interval_ms  time between two reports of progress
 * @return NBL_ERROR_NONE; NBL_ERROR_INVALID_PARAMETER; NBL_ERROR_NOT_CONNECTED; NBL_ERROR_FILE while another
 * download that has not ended, nor been cancelled, writes that file. A file that cannot be written is told by
 * the callback
 */
int nbl_provider_download(const char* uri, const char* mimetype, const char* path, int interval_ms,
                          nbl_download_cb callback, void* user_data, int* token);

/**
 * Cancels a download: its callback is told NBL_DOWNLOAD_STATE_CANCELLED, unless another end was on its way
 * already. One that has ended already is no error.
 *
 * @return NBL_ERROR_NONE; NBL_ERROR_INVALID_PARAMETER for a number that never was a token
 */
int nbl_provider_cancel_download(int token);

/**
 * What is told of an upload; each may be null. `item` is what is sent, valid during the call.
 *
 * `started` comes once, unless the upload ends before the server took it: the server has made the object and
 * the bytes begin to flow. `progress` comes every second meanwhile. `completed` comes exactly once and last,
 * with NBL_ERROR_NONE or why the upload failed; NBL_ERROR_CANCELLED after a cancel.
 */
typedef struct nbl_provider_receive_handler {
    void (*started)(int id, nbl_item_t item, int error, void* user_data);
    void (*completed)(int id, nbl_item_t item, int error, void* user_data);
    void (*progress)(int id, nbl_transfer_info* info, int error, void* user_data);
} nbl_provider_receive_handler;

/**
 * Sends content to a server that takes it. An object that the server made for content that did not arrive as
 * a whole is taken away again, if the server lets it.
 *
 * @param item      of nbl_item_get_local_content() or nbl_item_get_live_content(); may be freed when the call
 *                  returns
 * @param handlers  copied; may be gone when the call returns
 * @param id        receives the upload's number, above 0; -1 on an error
 * @return NBL_ERROR_NONE, NBL_ERROR_INVALID_PARAMETER, NBL_ERROR_NOT_CONNECTED. A server that takes nothing
 * is told by `completed`, with NBL_ERROR_NOT_SUPPORTED
 */
int nbl_provider_receive(nbl_provider_t provider, nbl_item_t item,
                         const nbl_provider_receive_handler* handlers, void* user_data, int* id);

/** Tells that a cancel was carried out, after the upload's `completed`. */
typedef void (*nbl_receive_cancelled_cb)(int id, int error, void* user_data);

/**
 * Cancels an upload; `completed` comes all the same. One that has ended already is no error.
 *
 * @param callback  called once; null is allowed
 * @return NBL_ERROR_NONE; NBL_ERROR_INVALID_PARAMETER for a number that never was an upload's: no callback
 * then
 */
int nbl_provider_cancel_receive(nbl_provider_t provider, int id, nbl_receive_cancelled_cb callback,
                                void* user_data);

/* ------------------------------------------------------------------------------------------- items */

/** Gives another reference to the same record. @param copy  the caller's: nbl_item_free() */
int nbl_item_copy(nbl_item_t item, nbl_item_t* copy);
/** Gives a reference back; null is allowed. */
void nbl_item_free(nbl_item_t item);

/**
 * Makes an item of a local file, to be sent. Its title is the file's name without the extension.
 *
 * @param path      not looked at before the upload begins
 * @param mimetype  the content's type, as "image/jpeg"
 * @param item      the caller's: nbl_item_free()
 */
int nbl_item_get_local_content(const char* path, const char* mimetype, nbl_item_t* item);

/**
 * Makes an item of content that comes through a FIFO, to be sent: it is read until its writer closes it.
 *
 * @param name      the file name that the content gets
 * @param mimetype  the content's type, as "image/jpg"
 * @param fifo      path of the FIFO, opened when the upload begins
 * @param item      the caller's: nbl_item_free()
 */
int nbl_item_get_live_content(const char* name, const char* mimetype, const char* fifo, nbl_item_t* item);

/*
 * Values of items. A text that the item does not have is NBL_ERROR_NO_DATA, with `*text` null; a number,
 * NBL_ERROR_NO_DATA too. Every item that a server gave has a title (its id, if the server gave none), a
 * content id and a type. Bytes that were not UTF-8 at the server have become U+FFFD.
 */

/** The title. */
int nbl_item_get_title(nbl_item_t item, char** text);
/** The id at the server. */
int nbl_item_get_content_id(nbl_item_t item, char** text);
/** The extension that fits the content, in lower case and without the dot: of its address, or for its type. A
 * folder has none. */
int nbl_item_get_extension(nbl_item_t item, char** text);
/** Where the content is fetched: the best of the addresses that the server gives, the original if it says so.
 */
int nbl_item_get_uri(nbl_item_t item, char** text);
/** Where a file of jump marks is fetched. */
int nbl_item_get_mta_uri(nbl_item_t item, char** text);
/** The content's type, as "video/mp4". */
int nbl_item_get_mimetype(nbl_item_t item, char** text);
int nbl_item_get_album_title(nbl_item_t item, char** text);
/** The artist; the author or creator, where there is none. */
int nbl_item_get_artist(nbl_item_t item, char** text);
/** The date as the server gives it: "2021-05-06" or "2021-05-06T10:20:30". */
int nbl_item_get_date(nbl_item_t item, char** text);
int nbl_item_get_genre(nbl_item_t item, char** text);
/** Where a picture was taken. */
int nbl_item_get_location(nbl_item_t item, char** text);
/** The size of a picture or video, as "1920x1080". */
int nbl_item_get_resolution(nbl_item_t item, char** text);
/** Where subtitles are fetched. */
int nbl_item_get_subtitle(nbl_item_t item, char** text);
/** Where a small picture is fetched. */
int nbl_item_get_thumbnail(nbl_item_t item, char** text);

/**
 * Any property that the server gave: an element by its name, as "upnp:playbackCount" or "kvr:dcmInfo", an
 * attribute of the object as "@parentID", one of the chosen address as "res@bitrate". An element that comes
 * several times gives the first one's text.
 */
int nbl_item_get_property_value_by_name(nbl_item_t item, const char* name, char** text);

/** An nbl_item_type_e. */
int nbl_item_get_type(nbl_item_t item, int* number);
/** How many children a folder has. NBL_ERROR_NO_DATA if it is no folder or its server did not say. */
int nbl_item_get_child_count(nbl_item_t item, int* number);
/** In pixels. */
int nbl_item_get_width(nbl_item_t item, int* number);
/** In pixels. */
int nbl_item_get_height(nbl_item_t item, int* number);
/** Bits of nbl_seek_mode_e. */
int nbl_item_get_seek_mode(nbl_item_t item, int* number);
/** In bytes. */
int nbl_item_get_file_size(nbl_item_t item, unsigned long long* number);
/** In milliseconds. */
int nbl_item_get_duration(nbl_item_t item, unsigned long long* number);
/** Where the item was left, in seconds; 0 for the start. Every item of a server has one. */
int nbl_item_get_bookmark(nbl_item_t item, int* number);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
