#ifndef HOMELOOM_TV_HOMETEXT_H
#define HOMELOOM_TV_HOMETEXT_H

#include "HomeView.h"

namespace homeloom::tv {

class Output;

/// Locations and rooms with their devices.
void showRooms(Output& out, const HomeView& home);
/// All devices under each other, with their ids.
void showDevices(Output& out, const HomeView& home);
/// `whole` lets long values go on below, where the screen would cut them.
void showDevice(Output& out, const HomeView::Device& device, bool whole);
void showScenes(Output& out, const HomeView& home);
void showRoutines(Output& out, const HomeView& home);

}  // namespace homeloom::tv

#endif
