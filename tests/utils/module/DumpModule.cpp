#include <string>

#include "Homeloom/Utils/DataDumpHelper.h"

// A plug-in that makes JSON of a dump; true when it came out right.
extern "C" __attribute__((visibility("default"))) bool MakeDump() {
    auto& dump = VMFramework::HomeLoom::DataDumpHelper::GetInstance();
    dump.SetInfoToJson("answer", 42);
    dump.GenerateJsonString();
    return dump.GetInfo() == R"({"answer":42})";
}
