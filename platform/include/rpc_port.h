/*
 * Calls between applications of the TV: a proxy connects to a named port of another application, and both ends exchange
 * parcels, sequences of typed values.
 *
 * A connection has two ports. Calls and their results go over the main port, in the order of the calls; what the other
 * side sends of its own accord comes over the callback port.
 *
 * All functions return a code below, 0 on success; nothing is handed out on a failure. They may be called on any
 * thread, inside callbacks too; one parcel belongs to one thread at a time. None of them needs the main loop to run.
 * Callbacks come on the GLib main loop, one at a time.
 */
#ifndef HOMELOOM_PLATFORM_RPC_PORT_H
#define HOMELOOM_PLATFORM_RPC_PORT_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    RPC_PORT_ERROR_NONE = 0,
    RPC_PORT_ERROR_IO_ERROR = -5,           /* the other side can't be reached, is gone, late, or talks nonsense */
    RPC_PORT_ERROR_PERMISSION_DENIED = -13, /* the other application may not be talked to */
    RPC_PORT_ERROR_INVALID_PARAMETER = -22
} rpc_port_error_e;

/*
 * How long sending a parcel, receiving one and connecting may take at most. A parcel that was not received in time may
 * still come, and then is the next one that is received.
 */
#define RPC_PORT_TIME_LIMIT_MS 3000
/* How long a parcel may be with all that is in it, in bytes. A longer one ends the connection. */
#define RPC_PORT_PARCEL_MAX (1024 * 1024)

typedef struct rpc_port_proxy_s* rpc_port_proxy_h;
/* Belongs to its proxy: valid until the disconnected callback returns, or the proxy is destroyed. */
typedef struct rpc_port_s* rpc_port_h;
typedef struct rpc_port_parcel_s* rpc_port_parcel_h;

typedef enum { RPC_PORT_PORT_MAIN = 0, RPC_PORT_PORT_CALLBACK = 1 } rpc_port_port_type_e;

/* ---- Proxies ---- */

/* 'endpoint' is the application's id. The texts are valid during the callback. 'port' is the main port. */
typedef void (*rpc_port_proxy_connected_event_cb)(const char* endpoint, const char* port_name, rpc_port_h port,
                                                  void* user_data);
/* The connection has ended; the proxy may connect again. */
typedef void (*rpc_port_proxy_disconnected_event_cb)(const char* endpoint, const char* port_name, void* user_data);
/* No connection came about: the application isn't there, doesn't want it, or doesn't answer. */
typedef void (*rpc_port_proxy_rejected_event_cb)(const char* endpoint, const char* port_name, void* user_data);
/* One call for each parcel on the callback port. rpc_port_parcel_create_from_port takes it without waiting. */
typedef void (*rpc_port_proxy_received_event_cb)(const char* endpoint, const char* port_name, void* user_data);

/* The caller destroys the proxy. */
int rpc_port_proxy_create(rpc_port_proxy_h* proxy);
/*
 * Ends the connection; the disconnected callback doesn't come for that. When it returns no callback is running or will
 * run, unless the caller is that callback itself.
 */
int rpc_port_proxy_destroy(rpc_port_proxy_h proxy);

/* One callback of each kind; a second one replaces it. To be set before connecting. */
int rpc_port_proxy_add_connected_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_connected_event_cb callback,
                                          void* user_data);
int rpc_port_proxy_add_disconnected_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_disconnected_event_cb callback,
                                             void* user_data);
int rpc_port_proxy_add_rejected_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_rejected_event_cb callback,
                                         void* user_data);
int rpc_port_proxy_add_received_event_cb(rpc_port_proxy_h proxy, rpc_port_proxy_received_event_cb callback,
                                         void* user_data);

/*
 * Begins to connect to the port of an application. 0 means that the connected or the rejected callback will come. While
 * the proxy is connected or connecting it fails with RPC_PORT_ERROR_IO_ERROR and changes nothing.
 */
int rpc_port_proxy_connect(rpc_port_proxy_h proxy, const char* app_id, const char* port_name);
/*
 * The same, waiting for the outcome: on success the connected callback has run on the calling thread. On a failure no
 * callback comes: RPC_PORT_ERROR_PERMISSION_DENIED if the application doesn't want the connection.
 */
int rpc_port_proxy_connect_sync(rpc_port_proxy_h proxy, const char* app_id, const char* port_name);

/* RPC_PORT_ERROR_IO_ERROR while there is no connection. */
int rpc_port_proxy_get_port(rpc_port_proxy_h proxy, rpc_port_port_type_e type, rpc_port_h* port);

/* ---- Parcels ---- */

/* The caller destroys the parcel, however it came about. */
int rpc_port_parcel_create(rpc_port_parcel_h* parcel);
/*
 * Receives a parcel. On the main port it waits for one on the calling thread, RPC_PORT_TIME_LIMIT_MS at most, and no
 * longer than the connection lasts. On the callback port it fails when none is there.
 */
int rpc_port_parcel_create_from_port(rpc_port_parcel_h* parcel, rpc_port_h port);
int rpc_port_parcel_destroy(rpc_port_parcel_h parcel);
/* RPC_PORT_ERROR_INVALID_PARAMETER for a parcel in which something could not be written. */
int rpc_port_parcel_send(rpc_port_parcel_h parcel, rpc_port_h port);

/* Fails with RPC_PORT_ERROR_INVALID_PARAMETER when the parcel would be longer than RPC_PORT_PARCEL_MAX. */
int rpc_port_parcel_write_int32(rpc_port_parcel_h parcel, int32_t value);
int rpc_port_parcel_write_bool(rpc_port_parcel_h parcel, bool value);
int rpc_port_parcel_write_string(rpc_port_parcel_h parcel, const char* value);

/*
 * Take the next value. RPC_PORT_ERROR_IO_ERROR if it is of another type or the parcel ends before it does; from then on
 * nothing can be read.
 */
int rpc_port_parcel_read_int32(rpc_port_parcel_h parcel, int32_t* value);
int rpc_port_parcel_read_bool(rpc_port_parcel_h parcel, bool* value);
/* The text is malloc'ed for the caller to free. */
int rpc_port_parcel_read_string(rpc_port_parcel_h parcel, char** value);

#ifdef __cplusplus
}
#endif

#endif
