/*
 * The service handler: how a plug-in is bound to the home-control framework.
 *
 * Callbacks arrive on threads of the framework, several at once; a plug-in may assume nothing about which.
 * What a callback is handed (property list, endpoint, text) is the framework's and may go away as soon
 * as the callback returns. A transaction handle outlives its callback: it takes answers as late and as often as
 * they come, until the service handler is destroyed.
 *
 * Sends are allowed from any thread at any time while the handle lives. The framework copies what it is
 * given before the call returns, and holds no lock across CreatePlugin or DestroyPlugin that a send needs.
 */
#ifndef HOMELOOM_PLATFORM_VMF_SERVICE_HANDLER_H
#define HOMELOOM_PLATFORM_VMF_SERVICE_HANDLER_H

#include "vmf_common.h"
#include "vmf_endpoint.h"
#include "vmf_property.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vmf_service_handler_s* vmf_service_handler_h;
typedef struct vmf_transaction_s* vmf_transaction_h;

/* A request: the list's name is the request's name, its properties are the arguments. */
typedef void (*vmf_request_service_cb)(vmf_service_handler_h handler, vmf_transaction_h transaction,
                                       vmf_property_list_h list, void* user_data);
/* Search, listen and device-list requests. What 'text' means is the framework's. */
typedef void (*vmf_search_cb)(vmf_service_handler_h handler, vmf_string_t text, void* user_data);
typedef void (*vmf_add_device_cb)(vmf_service_handler_h handler, vmf_endpoint_h endpoint, void* user_data);

/* Makes a service handler, or null. Freed with vmf_service_handler_destroy. */
vmf_service_handler_h vmf_service_handler_create(vmf_string_t name);

/* From here on requests for 'service' are routed to this handler, as far as callbacks are set. */
int vmf_service_handler_subscribe_service(vmf_service_handler_h handler, vmf_string_t service);
/* Ends the routing. Returns when no callback and no send of this handler is in flight. */
int vmf_service_handler_unsubscribe_service(vmf_service_handler_h handler, vmf_string_t service);
/* Frees the handler and its transactions. Returns when no callback and no send of it is in flight. */
int vmf_service_handler_destroy(vmf_service_handler_h handler);

/* One callback for each kind; setting it again replaces it. 0 on success. */
int vmf_service_handler_set_request_service_callback(vmf_service_handler_h handler, vmf_request_service_cb callback,
                                                     void* user_data);
int vmf_service_handler_set_active_search_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                   void* user_data);
int vmf_service_handler_set_active_search_stop_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                        void* user_data);
int vmf_service_handler_set_search_all_callback(vmf_service_handler_h handler, vmf_search_cb callback, void* user_data);
int vmf_service_handler_set_passive_search_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                    void* user_data);
int vmf_service_handler_set_passive_search_stop_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                         void* user_data);
int vmf_service_handler_set_add_device_callback(vmf_service_handler_h handler, vmf_add_device_cb callback,
                                                void* user_data);

/*
 * The answer to a request. 'list' stays the caller's. With a null transaction the result is tied to no
 * request. 'flags' is the framework's own and must be 0. 0 on success.
 */
int vmf_service_handler_send_request_result(vmf_service_handler_h handler, vmf_string_t service,
                                            vmf_property_list_h list, vmf_transaction_h transaction, int flags);
/* A notify, tied to a request when 'transaction' is not null. Otherwise as the result. */
int vmf_service_handler_notify(vmf_service_handler_h handler, vmf_string_t service, vmf_property_list_h list,
                               vmf_transaction_h transaction, int flags);

/* The whole home. It replaces what was reported before. The list stays the caller's. */
int vmf_service_handler_report_device_list(vmf_service_handler_h handler, vmf_endpoint_list_h list);
/* One found device. The endpoint stays the caller's. */
int vmf_service_handler_report_device_found(vmf_service_handler_h handler, vmf_endpoint_h endpoint);

/* The load state of a plug-in: 0 available, 1 unavailable, 2 waiting for its connection. 0 on success. */
int vmf_plugin_send_load_result(vmf_string_t plugin_name, int status);

#ifdef __cplusplus
}
#endif

#endif
