#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include <desktop/DataFolder.h>
#include <desktop/IrKeyMaps.h>
#include <desktop/Log.h>
#include <desktop/Settings.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "Output.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

namespace settings = desktop::settings;

constexpr std::chrono::seconds kWatchTime{10};
constexpr int kLastIrKey = 99;

void watch(Desk& desk, const Words& words) {
    if (words.size() > 1) {
        throw UsageError();
    }
    const auto time = words.empty() ? kWatchTime : parseDuration(words[0]);
    if (!time) {
        throw CommandError(fmt::format("\"{}\" is no time: 5, 500ms, 2m", words[0]));
    }
    desk.watch(*time);
}

std::string settingText(const settings::Value& value) {
    const int* const number = std::get_if<int>(&value);
    return number != nullptr ? std::to_string(*number) : std::get<std::string>(value);
}

void listSettings(Desk& desk) {
    Table table;
    for (const std::string& key : settings::keys()) {
        if (const auto value = settings::get(key)) {
            table.add({key, settingText(*value)});
        }
    }
    desk.out().say(table);
}

void setting(Desk& desk, const Words& words) {
    if (words.empty()) {
        listSettings(desk);
    } else if (words.size() == 1) {
        const auto value = settings::get(words[0]);
        if (!value) {
            throw CommandError(fmt::format("there is no setting {}", words[0]));
        }
        desk.out().say(settingText(*value));
    } else if (words.size() == 2) {
        desk.pump();
        if (const auto number = parseInt(words[1])) {
            settings::setInt(words[0], *number);
        } else {
            settings::setString(words[0], words[1]);
        }
        desk.settle();
    } else {
        throw UsageError();
    }
}

/// The files of the application's data folder: lists them, shows one, or writes one. An empty text removes it.
void dataFile(Desk& desk, const Words& words) {
    namespace fs = std::filesystem;
    if (words.empty()) {
        for (const auto& entry : fs::directory_iterator(desktop::dataFolder())) {
            desk.out().say(entry.path().filename().string());
        }
        return;
    }
    if (words.size() > 2 || words[0].empty() || fs::path(words[0]).filename() != words[0]) {
        throw UsageError();
    }
    const fs::path file = desktop::dataFolder() / words[0];
    if (words.size() == 2 && words[1].empty()) {
        fs::remove(file);
    } else if (words.size() == 2) {
        std::ofstream(file) << words[1];
    } else if (std::ifstream stream(file); stream) {
        desk.out().say(std::string(std::istreambuf_iterator<char>(stream), {}));
    } else {
        throw CommandError(fmt::format("there is no file {}", words[0]));
    }
}

/// The infrared code sets: lists them with their keys, or sets the keys of one.
void irKeys(Desk& desk, const Words& words) {
    namespace ir = desktop::ir;
    if (words.empty()) {
        Table table;
        for (const auto& [codeSet, keyMap] : ir::keyMaps()) {
            std::vector<std::size_t> keys;
            for (std::size_t key = 0; key < keyMap.size(); ++key) {
                if (keyMap[key] == '1') {
                    keys.push_back(key);
                }
            }
            table.add({codeSet, fmt::format("{}", fmt::join(keys, " "))});
        }
        desk.out().say(table);
        return;
    }
    std::set<unsigned> keys;
    for (auto word = words.begin() + 1; word != words.end(); ++word) {
        const auto key = parseInt(*word);
        if (!key || *key < 0 || *key > kLastIrKey) {
            throw CommandError(fmt::format("\"{}\" is no key: 0 to {}", *word, kLastIrKey));
        }
        keys.insert(static_cast<unsigned>(*key));
    }
    ir::setKeyMap(words[0], ir::keyMapOf(keys));
}

void log(Desk&, const Words& words) {
    if (words.size() != 1) {
        throw UsageError();
    }
    log_priority priority = DLOG_ERROR;
    if (words[0] == "off") {
        desktop::log::off();
    } else if (desktop::log::parsePriority(words[0], priority)) {
        desktop::log::toStderr(priority);
    } else {
        throw CommandError(fmt::format("\"{}\" is no level: debug, info, warn, error, off", words[0]));
    }
}

void quit(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    desk.quit();
}

}  // namespace

std::vector<Command> deskCommands() {
    return {
        {"watch",
         "[TIME]",
         "shows what is reported during that time; 10 seconds if none is given",
         {"watch 2", "watch 500ms"},
         watch,
         {}},
        {"setting",
         "[KEY [VALUE]]",
         "shows the TV's settings, or one of them, or sets it; whole numbers are numbers",
         {"setting db/menu_widget/language ko_KR.utf8"},
         setting,
         {Hint::Kind::Setting}},
        {"data-file",
         "[NAME [TEXT]]",
         "lists the files of the application's data folder, or shows one, or writes it; an empty text removes it",
         {R"(data-file Country {"SelectedCountryCode": "KR"})", "data-file Country \"\""},
         dataFile,
         {}},
        {"ir-keys",
         "[CODESET KEY ...]",
         "lists the infrared code sets with their keys, or sets the keys of one",
         {"ir-keys", "ir-keys 3000 10 13 14"},
         irKeys,
         {}},
        {"log",
         "LEVEL|off",
         "writes log lines from that level on to standard error",
         {"log info", "log off"},
         log,
         {Hint({"debug", "info", "warn", "error", "off"})}},
        {"quit", "", "unloads the plug-in and ends", {"quit"}, quit, {}},
    };
}

}  // namespace homeloom::tv
