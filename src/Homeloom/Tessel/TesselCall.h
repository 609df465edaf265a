#ifndef HOMELOOM_HOMELOOM_TESSEL_TESSELCALL_H
#define HOMELOOM_HOMELOOM_TESSEL_TESSELCALL_H

#include <atomic>
#include <initializer_list>
#include <string>
#include <utility>

#include "Common/CText.h"
#include "Common/HLLog.h"
#include "Common/Mutex.h"
#include "Homeloom/Common/AsyncJob.h"
#include "Homeloom/Common/FairMutex.h"
#include "Homeloom/Tessel/TesselReplies.h"

namespace VMFramework::HomeLoom {

/// Text goes to the agent as its characters, everything else as it is.
inline const char* ToAgent(const std::string& text) {
    return text.c_str();
}
template <typename T>
T ToAgent(T value) {
    return value;
}

inline void TakeText(char* text, std::string& out) {
    const OwnedText owner(text);
    if (text != nullptr) {
        out = text;
    }
}

/// The forms that the facade's operations have. An operation names what it needs of its arguments, the agent's
/// function, and the arguments between the handle and the function's own out parameters.
///
/// One plain mutex is held for the whole of each operation, a blocking one included: no operation may call another
/// one under it.
class TesselCall {
protected:
    /// What must be there before the agent is asked, with the words for the log when it is not. Knows the operation
    /// that wrote it down, so that the log names that.
    struct Needs {
        struct Need {
            Need(const std::string& text, const char* words) : met(!text.empty()), complaint(words) {}
            Need(bool isThere, const char* words) : met(isThere), complaint(words) {}

            bool met;
            const char* complaint;
        };

        Needs(std::initializer_list<Need> list, const Log::Place& where = HL_CALLER) : needs(list), place(where) {}

        const std::initializer_list<Need> needs;
        const Log::Place place;
    };

    /// The words for the log when there is no record to work on.
    struct Complaint {
        Complaint(const char* text, const Log::Place& where = HL_CALLER) : words(text), place(where) {}

        const char* const words;
        const Log::Place place;
    };

    bool _MayCall(const Needs& needs) const REQUIRES(_mutex) {
        if (_clientHandle == nullptr) {
            HL_LOG_AT(DLOG_ERROR, needs.place, "client handle is null");
            return false;
        }
        for (const Needs::Need& need : needs.needs) {
            if (!need.met) {
                HL_LOG_AT(DLOG_ERROR, needs.place, "%s", need.complaint);
                return false;
            }
        }
        return true;
    }

    /// The plain operation.
    template <typename... Parameters, typename... Args>
    int _Call(const Needs& needs, int (*function)(homeloom_client_h, Parameters...), const Args&... args) {
        const Locked<FairMutex> lock(_mutex);
        return _MayCall(needs) ? function(_clientHandle, ToAgent(args)...) : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }

    /// The plain operation whose last out parameter is a text.
    template <typename... Parameters, typename... Args>
    int _CallForText(const Needs& needs, std::string& text, int (*function)(homeloom_client_h, Parameters...),
                     const Args&... args) {
        char* handedOut = nullptr;
        const int ret = _Call(needs, function, args..., &handedOut);
        TakeText(handedOut, text);
        return ret;
    }

    /// An operation on a record, which needs no connection.
    template <typename Record, typename... Parameters, typename... Args>
    int _Access(const Complaint& complaint, int (*function)(Record, Parameters...), Record record,
                const Args&... args) {
        const Locked<FairMutex> lock(_mutex);
        if (record == nullptr) {
            HL_LOG_AT(DLOG_ERROR, complaint.place, "%s", complaint.words);
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        return function(record, ToAgent(args)...);
    }

    template <typename Record>
    int _AccessText(const Complaint& complaint, int (*function)(Record, int, char**), Record record, int field,
                    std::string& text) {
        char* handedOut = nullptr;
        const int ret = _Access(complaint, function, record, field, &handedOut);
        TakeText(handedOut, text);
        return ret;
    }

    template <typename Record>
    int _DestroyList(const Complaint& complaint, int (*destroy)(Record), Record* list, int count) {
        const Locked<FairMutex> lock(_mutex);
        if (list == nullptr) {
            HL_LOG_AT(DLOG_ERROR, complaint.place, "%s", complaint.words);
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        if (count < 0) {
            // The same words for every kind of list.
            HL_LOG_AT(DLOG_ERROR, complaint.place, "device size is under zero, do not proceed");
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        return DestroyRecords(list, count, destroy);
    }

    /// The blocking operation: 'args' end with the callback. An empty reply with -22 if the agent can't be asked.
    template <typename Param, typename... Parameters, typename... Args>
    Param _Await(const Needs& needs, int (*function)(homeloom_client_h, Parameters...), const Args&... args) {
        const Locked<FairMutex> lock(_mutex);
        if (!_MayCall(needs)) {
            Param refused;
            refused.ret = HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
            return refused;
        }
        return AsyncJob<Param>().Await(_contextRunning, function, _clientHandle.load(), ToAgent(args)...);
    }

    template <typename Param, typename... Parameters, typename... Args>
    int _AwaitText(const Needs& needs, std::string& json, std::string& errorMessage,
                   int (*function)(homeloom_client_h, Parameters...), const Args&... args) {
        Param reply = _Await<Param>(needs, function, args...);
        json = std::move(reply.resultJson);
        errorMessage = std::move(reply.errorMessage);
        HL_LOG_AT(DLOG_INFO, needs.place, "ret: %d, error_message: %s", reply.ret, errorMessage.c_str());
        return reply.ret;
    }

    template <typename Param, typename... Parameters, typename... Args>
    int _AwaitText(const Needs& needs, std::string& json, int (*function)(homeloom_client_h, Parameters...),
                   const Args&... args) {
        std::string errorMessage;
        return _AwaitText<Param>(needs, json, errorMessage, function, args...);
    }

    template <typename Param, typename Record, typename... Parameters, typename... Args>
    int _AwaitList(const Needs& needs, Record*& list, int& count, int (*function)(homeloom_client_h, Parameters...),
                   const Args&... args) {
        Param reply = _Await<Param>(needs, function, args...);
        reply.records.Release(list, count);
        HL_LOG_AT(DLOG_INFO, needs.place, "ret: %d, device_size: %d", reply.ret, count);
        return reply.ret;
    }

    template <typename Param, typename Record, typename... Parameters, typename... Args>
    int _AwaitRecord(const Needs& needs, Record& record, int (*function)(homeloom_client_h, Parameters...),
                     const Args&... args) {
        Param reply = _Await<Param>(needs, function, args...);
        record = std::exchange(reply.record, nullptr);
        HL_LOG_AT(DLOG_INFO, needs.place, "ret: %d", reply.ret);
        return reply.ret;
    }

    // Written under the mutex only; atomic for GetHandle.
    std::atomic<homeloom_client_h> _clientHandle{nullptr};
    FairMutex _mutex;
    // What blocking operations wait under. Written without the mutex, or nobody could end a wait.
    std::atomic<bool> _contextRunning{true};
};

}  // namespace VMFramework::HomeLoom

#endif
