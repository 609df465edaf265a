#ifndef HOMELOOM_TV_DESKSETTINGS_H
#define HOMELOOM_TV_DESKSETTINGS_H

#include <optional>
#include <string>

namespace simulator {
struct Account;
}

namespace homeloom::tv {

inline constexpr char kDisclaimerKey[] = "db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree";

/// Sets what the TV's menus and its first start would have set, then what `file` has kept, then the disclaimer if it is
/// given. The file keeps all settings from then on; an empty name stands for none. Throws std::runtime_error if it
/// can't.
void applyDeskSettings(const simulator::Account& account, const std::string& file, std::optional<bool> disclaimer);
bool isDisclaimerAccepted();

}  // namespace homeloom::tv

#endif
