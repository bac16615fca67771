// Checks of dialog descriptions and texts.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <set>

#include "dialogs/dialog_numbers.h"
#include "engine/model/problem.h"
#include "validate/checks.h"
#include "validate/stage.h"
#include "validate/strings_table.h"

namespace rovescio::validate {

namespace {

namespace fs = std::filesystem;
using Keys = std::set<std::string, std::less<>>;
using TablesByLanguage = std::map<std::string, StringsTable>;

constexpr const char* kTextTable = "Localizable";
constexpr const char* kDialogTable = "Dialogs";

// One table in every language of the bundle.
engine::Result<TablesByLanguage> readTables(const std::string& bundle, const std::string& name) {
    const auto problem = [](const std::string& what) {
        return engine::Problem{.message = what, .file = {}, .measure = {}, .remedy = {}};
    };
    TablesByLanguage tables;
    std::error_code error;
    for (const auto& folder : fs::directory_iterator(fs::path(bundle) / "Contents/Resources", error)) {
        if (folder.path().extension() != ".lproj") continue;
        const std::string place = folder.path().filename().string() + "/" + name + ".strings";
        std::ifstream file(folder.path() / (name + ".strings"), std::ios::binary);
        if (!file) return problem("there is no " + place);
        const auto table = parseStrings(std::string(std::istreambuf_iterator<char>(file), {}));
        if (!table) return problem(place + " is not a list of texts, or has a key twice");
        tables[folder.path().stem().string()] = *table;
    }
    if (tables.empty()) return problem("there is no language folder");
    return tables;
}

// Whether every language has a text for exactly these keys.
Verdict compareKeys(const TablesByLanguage& tables, const Keys& expected) {
    const auto wrong = [](const std::string& key, const char* what, const std::string& language) {
        return failed(key + what + language);
    };
    for (const auto& [language, table] : tables) {
        for (const std::string& key : expected) {
            const auto found = table.find(key);
            if (found == table.end() || found->second.empty()) {
                return wrong(key, " has no text in ", language);
            }
        }
        for (const auto& [key, text] : table) {
            if (!expected.contains(key)) return wrong(key, " is not used in ", language);
        }
    }
    return passed(std::to_string(tables.size()) + " languages");
}

Verdict describesDialogs(const std::string& bundle) {
    const auto plugIn = run::PlugIn::load(bundle);
    if (!plugIn) return failed(plugIn.problem().message);
    return plugIn.value().dialogs.find(dialogs::main_dialog::kNumber)
               ? passed()
               : failed("the main dialog is not described");
}

Verdict hasTextsInEveryLanguage(const std::string& bundle) {
    const auto tables = readTables(bundle, kTextTable);
    if (!tables) return failed(tables.problem().message);
    Keys keys;
    for (const auto& [language, table] : tables.value()) {
        for (const auto& [key, text] : table) keys.insert(key);
    }
    return compareKeys(tables.value(), keys);
}

// Titles are named by the dialog, items by "dialog.item", menu entries by "dialog.item.entry".
Verdict hasDialogTextsInEveryLanguage(const std::string& bundle) {
    const auto plugIn = run::PlugIn::load(bundle);
    if (!plugIn) return failed(plugIn.problem().message);
    const auto tables = readTables(bundle, kDialogTable);
    if (!tables) return failed(tables.problem().message);
    Keys keys;
    for (int number = 1; number <= std::numeric_limits<short>::max(); ++number) {
        const auto* dialog = plugIn.value().dialogs.find(static_cast<short>(number));
        if (!dialog) continue;
        const std::string title = std::to_string(number);
        keys.insert(title);
        for (const dialogs::Item& item : dialog->items) {
            const std::string name = title + "." + std::to_string(item.number);
            keys.insert(name);
            for (int entry = 1; entry <= item.entries; ++entry)
                keys.insert(name + "." + std::to_string(entry));
        }
    }
    return compareKeys(tables.value(), keys);
}

}  // namespace

std::vector<Check> resourceChecks() {
    return {
        checkApart("dialog descriptions", describesDialogs),
        checkApart("texts in every language", hasTextsInEveryLanguage),
        checkApart("dialog texts in every language", hasDialogTextsInEveryLanguage),
    };
}

}  // namespace rovescio::validate
