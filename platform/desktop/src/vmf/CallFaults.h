#ifndef HOMELOOM_DESKTOP_VMF_CALLFAULTS_H
#define HOMELOOM_DESKTOP_VMF_CALLFAULTS_H

namespace homeloom::desktop {

/// The code with which this call is to fail, or 0. Each function asks once, with its own name.
int takeFault(const char* function);

}  // namespace homeloom::desktop

#endif
