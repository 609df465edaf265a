#ifndef HOMELOOM_TV_REPORT_H
#define HOMELOOM_TV_REPORT_H

#include <desktop/Framework.h>
#include <desktop/Records.h>

namespace homeloom::tv {

// What the plug-in reports, as the framework took it. A key that is absent is an empty text, 0 and false: the plug-in
// leaves empty texts out.
using desktop::EndpointRecord;
using desktop::Fields;
using desktop::Value;
using desktop::framework::Report;
using desktop::framework::ReportPtr;

}  // namespace homeloom::tv

#endif
