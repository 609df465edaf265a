#ifndef HOMELOOM_TV_DESKSETTINGS_H
#define HOMELOOM_TV_DESKSETTINGS_H

namespace simulator {
struct Account;
}

namespace homeloom::tv {

inline constexpr char kDisclaimerKey[] = "db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree";

/// Sets what the TV's menus and its first start would have set.
void applyDeskSettings(const simulator::Account& account, bool disclaimerAccepted);

}  // namespace homeloom::tv

#endif
