#ifndef HOMELOOM_DESKTOP_VMF_SERVICEHANDLERS_H
#define HOMELOOM_DESKTOP_VMF_SERVICEHANDLERS_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <vmf_service_handler.h>

#include "vmf/HandleTable.h"

namespace homeloom::desktop {

template <typename Function>
struct Callback {
    Function function = nullptr;
    void* userData = nullptr;
};

struct Callbacks {
    Callback<vmf_request_service_cb> request;
    Callback<vmf_search_cb> activeSearch;
    Callback<vmf_search_cb> activeSearchStop;
    Callback<vmf_search_cb> searchAll;
    Callback<vmf_search_cb> passiveSearch;
    Callback<vmf_search_cb> passiveSearchStop;
    Callback<vmf_add_device_cb> addDevice;
};

struct ServiceHandler {
    vmf_service_handler_h handle = nullptr;
    std::set<std::string> services;
    Callbacks callbacks;
    int inFlight = 0;  // callbacks and sends
    bool ending = false;
};

struct Transaction {
    vmf_transaction_h handle = nullptr;
    std::uint64_t id = 0;
    vmf_service_handler_h handler = nullptr;
};

/// The service handlers with their transactions, and the threads on which their callbacks run.
class ServiceHandlers {
public:
    /// Runs one callback; without a lock.
    using Delivery = std::function<void(vmf_service_handler_h, const Callbacks&)>;

    static ServiceHandlers& instance();

    vmf_service_handler_h create();
    int subscribe(vmf_service_handler_h handle, const std::string& service);
    /// These two return when nothing of the handler is in flight.
    int unsubscribe(vmf_service_handler_h handle, const std::string& service);
    int destroy(vmf_service_handler_h handle);
    int setCallback(vmf_service_handler_h handle, const std::function<void(Callbacks&)>& set);

    /// Queues a callback for whoever is subscribed to the service when its turn comes.
    void fire(const std::string& service, Delivery delivery);
    /// The same with a transaction, which `make` gets; returns its id, or 0 when nobody is subscribed.
    std::uint64_t fireRequest(const std::string& service, const std::function<Delivery(vmf_transaction_h)>& make);

    void setThreads(std::size_t count);
    bool waitIdle(std::chrono::milliseconds limit);
    bool isSubscribed(const std::string& service) const;
    std::size_t liveHandlers() const { return _handlers.live(); }
    std::size_t liveTransactions() const { return _transactions.live(); }

    /// Keeps a handler from ending while something is sent on it. The result is not 0 for a handle, or a
    /// transaction, that is no good.
    class Sending {
    public:
        Sending(vmf_service_handler_h handle, vmf_transaction_h transaction);
        ~Sending();
        Sending(const Sending&) = delete;
        Sending& operator=(const Sending&) = delete;

        int result() const { return _result; }
        std::uint64_t transactionId() const { return _transactionId; }

    private:
        ServiceHandler* _handler = nullptr;
        int _result = VMF_ERROR_NONE;
        std::uint64_t _transactionId = 0;
    };

private:
    struct Job {
        std::string service;
        Delivery delivery;
    };

    ServiceHandler* findSubscribed(const std::string& service) const;
    void queue(Job job);
    void work(std::size_t number);
    void deliver(const Job& job, std::unique_lock<std::mutex>& lock);
    void waitUntilQuiet(std::unique_lock<std::mutex>& lock, vmf_service_handler_h handle);
    void release(ServiceHandler& handler);

    mutable std::mutex _mutex;
    std::condition_variable _jobQueued;
    std::condition_variable _jobDone;
    std::condition_variable _landed;  // something in flight came to its end

    HandleTable<ServiceHandler, vmf_service_handler_h, HandleKind::ServiceHandler> _handlers;
    std::vector<ServiceHandler*> _live;
    HandleTable<Transaction, vmf_transaction_h, HandleKind::Transaction> _transactions;
    std::vector<vmf_transaction_h> _openTransactions;
    std::uint64_t _lastTransaction = 0;

    std::deque<Job> _jobs;
    std::vector<std::thread> _threads;
    std::size_t _wantedThreads = 4;
    std::size_t _running = 0;  // jobs
};

}  // namespace homeloom::desktop

#endif
