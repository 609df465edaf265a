#include "vmf/ServiceHandlers.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace homeloom::desktop {

namespace {

// The handler whose callback runs on this thread: it can't wait for itself.
thread_local vmf_service_handler_h current = nullptr;

}  // namespace

ServiceHandlers& ServiceHandlers::instance() {
    // Never destroyed: its threads wait for work until the process is gone.
    static ServiceHandlers* const handlers = new ServiceHandlers();
    return *handlers;
}

vmf_service_handler_h ServiceHandlers::create() {
    const std::lock_guard<std::mutex> lock(_mutex);
    auto made = std::make_unique<ServiceHandler>();
    ServiceHandler* const handler = made.get();
    const vmf_service_handler_h handle = _handlers.add(std::move(made));
    if (handle != nullptr) {
        _live.push_back(handler);
    }
    return handle;
}

int ServiceHandlers::subscribe(vmf_service_handler_h handle, const std::string& service) {
    const std::lock_guard<std::mutex> lock(_mutex);
    ServiceHandler* const handler = _handlers.get(handle);
    if (handler == nullptr || service.empty()) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (findSubscribed(service) != nullptr) {
        return VMF_ERROR_INVALID_STATE;
    }
    handler->services.insert(service);
    return VMF_ERROR_NONE;
}

void ServiceHandlers::waitUntilQuiet(std::unique_lock<std::mutex>& lock, vmf_service_handler_h handle) {
    _landed.wait(lock, [&] {
        const ServiceHandler* handler = _handlers.get(handle);  // somebody else may end it meanwhile
        return handler == nullptr || handler->inFlight == 0;
    });
}

int ServiceHandlers::unsubscribe(vmf_service_handler_h handle, const std::string& service) {
    std::unique_lock<std::mutex> lock(_mutex);
    ServiceHandler* const handler = _handlers.get(handle);
    if (handler == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (handle == current) {
        return VMF_ERROR_INVALID_STATE;
    }
    if (handler->services.erase(service) == 0) {
        return VMF_ERROR_NOT_FOUND;
    }
    waitUntilQuiet(lock, handle);
    return VMF_ERROR_NONE;
}

int ServiceHandlers::destroy(vmf_service_handler_h handle) {
    std::unique_lock<std::mutex> lock(_mutex);
    ServiceHandler* const handler = _handlers.get(handle);
    if (handler == nullptr || handler->ending) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (handle == current) {
        return VMF_ERROR_INVALID_STATE;
    }
    handler->ending = true;
    handler->services.clear();
    waitUntilQuiet(lock, handle);
    const auto ofThis = [&](vmf_transaction_h open) {
        if (_transactions.get(open)->handler != handle) {
            return false;
        }
        _transactions.remove(open);
        return true;
    };
    _openTransactions.erase(std::remove_if(_openTransactions.begin(), _openTransactions.end(), ofThis),
                            _openTransactions.end());
    _live.erase(std::find(_live.begin(), _live.end(), handler));
    _handlers.remove(handle);
    return VMF_ERROR_NONE;
}

int ServiceHandlers::setCallback(vmf_service_handler_h handle, const std::function<void(Callbacks&)>& set) {
    const std::lock_guard<std::mutex> lock(_mutex);
    ServiceHandler* const handler = _handlers.get(handle);
    if (handler == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    set(handler->callbacks);
    return VMF_ERROR_NONE;
}

ServiceHandler* ServiceHandlers::findSubscribed(const std::string& service) const {
    const auto found = std::find_if(_live.begin(), _live.end(), [&](const ServiceHandler* handler) {
        return handler->services.count(service) != 0;
    });
    return found != _live.end() ? *found : nullptr;
}

bool ServiceHandlers::isSubscribed(const std::string& service) const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return findSubscribed(service) != nullptr;
}

void ServiceHandlers::fire(const std::string& service, Delivery delivery) {
    const std::lock_guard<std::mutex> lock(_mutex);
    queue({service, std::move(delivery)});
}

std::uint64_t ServiceHandlers::fireRequest(const std::string& service,
                                           const std::function<Delivery(vmf_transaction_h)>& make) {
    const std::lock_guard<std::mutex> lock(_mutex);
    const ServiceHandler* handler = findSubscribed(service);
    if (handler == nullptr) {
        return 0;
    }
    auto made = std::make_unique<Transaction>();
    made->id = ++_lastTransaction;
    made->handler = handler->handle;
    const vmf_transaction_h transaction = _transactions.add(std::move(made));
    if (transaction == nullptr) {
        return 0;
    }
    _openTransactions.push_back(transaction);
    queue({service, make(transaction)});
    return _lastTransaction;
}

void ServiceHandlers::queue(Job job) {
    _jobs.push_back(std::move(job));
    while (_threads.size() < std::max<std::size_t>(_wantedThreads, 1)) {
        _threads.emplace_back([this, number = _threads.size()] { work(number); });
    }
    _jobQueued.notify_one();
}

void ServiceHandlers::setThreads(std::size_t count) {
    std::vector<std::thread> surplus;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _wantedThreads = std::max<std::size_t>(count, 1);
        while (_threads.size() > _wantedThreads) {
            surplus.push_back(std::move(_threads.back()));
            _threads.pop_back();
        }
    }
    _jobQueued.notify_all();
    for (std::thread& thread : surplus) {
        thread.join();
    }
}

void ServiceHandlers::work(std::size_t number) {
    std::unique_lock<std::mutex> lock(_mutex);
    for (;;) {
        _jobQueued.wait(lock, [&] { return !_jobs.empty() || number >= _wantedThreads; });
        if (number >= _wantedThreads) {
            _jobQueued.notify_one();  // in case that it was meant for work
            return;
        }
        const Job job = std::move(_jobs.front());
        _jobs.pop_front();
        ++_running;
        deliver(job, lock);
        --_running;
        _jobDone.notify_all();
    }
}

void ServiceHandlers::deliver(const Job& job, std::unique_lock<std::mutex>& lock) {
    ServiceHandler* const handler = findSubscribed(job.service);
    if (handler == nullptr) {
        return;
    }
    const Callbacks callbacks = handler->callbacks;
    const vmf_service_handler_h handle = handler->handle;
    ++handler->inFlight;
    lock.unlock();
    current = handle;
    job.delivery(handle, callbacks);
    current = nullptr;
    lock.lock();
    release(*handler);
}

void ServiceHandlers::release(ServiceHandler& handler) {
    --handler.inFlight;
    _landed.notify_all();
}

bool ServiceHandlers::waitIdle(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(_mutex);
    return _jobDone.wait_for(lock, limit, [&] { return _jobs.empty() && _running == 0; });
}

ServiceHandlers::Sending::Sending(vmf_service_handler_h handle, vmf_transaction_h transaction) {
    ServiceHandlers& all = instance();
    const std::lock_guard<std::mutex> lock(all._mutex);
    ServiceHandler* const handler = all._handlers.get(handle);
    const Transaction* answered = all._transactions.get(transaction);
    const bool strange = transaction != nullptr && (answered == nullptr || answered->handler != handle);
    if (handler == nullptr || handler->ending || strange) {
        _result = VMF_ERROR_INVALID_PARAMETER;
        return;
    }
    _transactionId = answered != nullptr ? answered->id : 0;
    _handler = handler;
    ++_handler->inFlight;
}

ServiceHandlers::Sending::~Sending() {
    if (_handler != nullptr) {
        ServiceHandlers& all = instance();
        const std::lock_guard<std::mutex> lock(all._mutex);
        all.release(*_handler);
    }
}

}  // namespace homeloom::desktop
