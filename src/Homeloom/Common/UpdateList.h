#ifndef HOMELOOM_HOMELOOM_COMMON_UPDATELIST_H
#define HOMELOOM_HOMELOOM_COMMON_UPDATELIST_H

namespace VMFramework::HomeLoom {

/// Why the home is sent to the framework anew. The numbers stand in the log; 4 and 5 are none.
enum class UpdateList : int {
    MapRebuilt = 0,
    ListEmpty = 1,
    DetailsChanged = 2,
    LocationChanged = 3,  ///< leaves the setting that tells whether there are devices as it is
    LifecycleEvent = 6
};

}  // namespace VMFramework::HomeLoom

#endif
