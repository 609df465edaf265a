#ifndef HOMELOOM_HOMELOOM_LOCATION_LOCATIONRECORDS_H
#define HOMELOOM_HOMELOOM_LOCATION_LOCATIONRECORDS_H

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "Common/Mutex.h"
#include "Homeloom/Common/Handler.h"
#include "Homeloom/Location/CoreLocationInfo.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class IEndpointListHelper;
class ITesselHandler;

/// What the agent keeps of one kind by location and id, each with a JSON text: scenes, and routines. Makes endpoints of
/// them and follows their events.
///
/// Holds no record: every read goes to the agent and blocks on the facade.
template <typename Record>
class LocationRecords : public Handler {
public:
    using GetLocationsCallback = std::function<std::unordered_map<std::string, core_location_info_struct>()>;

    void SetGetLocationsCallback(GetLocationsCallback callback);

protected:
    using JsonById = std::unordered_map<std::string, std::string>;

    /// The agent's operations for the kind, and its words.
    struct Kind {
        const char* name;           // in the log
        const char* interfaceType;  // an endpoint's
        const char* jsonKey;        // of the text on an endpoint
        const char* idMember;       // of an event
        int idField;
        int jsonField;
        int (ITesselHandler::*getList)(const std::string& locationId, Record*& list, int& count);
        int (ITesselHandler::*getOne)(const std::string& locationId, const std::string& id, Record& record);
        int (ITesselHandler::*getString)(Record record, int field, std::string& value);
        int (ITesselHandler::*destroyList)(Record* list, int count);
        int (ITesselHandler::*destroyOne)(Record record);
    };

    LocationRecords(ITesselHandler& agent, const std::string& handlerName, const Kind& kind);

    /// Those of all locations but the hidden ones. Throws CException when the handler quits.
    JsonById GetAll();
    /// The record's text; empty if it can't be read.
    std::string GetJson(const std::string& locationId, const std::string& id);
    /// Appends one endpoint for each of GetAll().
    void AppendEndpoints(const std::shared_ptr<IEndpointListHelper>& list);
    /// Reads one event of the stream and calls one of the three below. Throws when a member that it reads is no text.
    void HandleEvent(const std::string& json);

    virtual bool IsHidden(const std::string& json) const = 0;
    virtual void Created(const std::string& locationId, const std::string& id) = 0;
    virtual void Updated(const std::string& locationId, const std::string& id) = 0;
    virtual void Deleted(const std::string& locationId, const std::string& id) = 0;

    ITesselHandler& _agent;

private:
    JsonById getList(const std::string& locationId);
    bool readString(Record record, int field, const char* what, std::string& value);
    void throwIfQuit() const;

    const Kind _kind;
    const std::string _quitText;
    Mutex _mutex;  // a leaf
    GetLocationsCallback _getLocationsCallback GUARDED_BY(_mutex);
};

}  // namespace VMFramework::HomeLoom

#endif
