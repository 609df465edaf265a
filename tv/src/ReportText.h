#ifndef HOMELOOM_TV_REPORTTEXT_H
#define HOMELOOM_TV_REPORTTEXT_H

#include <string>

#include "HomeView.h"
#include "Report.h"
#include "Text.h"

namespace homeloom::tv {

/// A report in one line, for people.
std::string reportText(const Report& report, const HomeView& home, const Style& style);

std::string loadStatusText(int status);
/// "33 devices, 2 locations, 3 scenes, 3 routines".
std::string homeText(const HomeView& home);
/// "key=value other="two words"".
std::string fieldsText(const Fields& fields);
Tone lookTone(const HomeView::Device& device);

}  // namespace homeloom::tv

#endif
