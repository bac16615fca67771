// Locale names, folder names and old English folder names brought to one form and matched.
#include "languages.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <utility>

namespace rovescio::platform {

namespace {

using Alias = std::pair<std::string_view, std::string_view>;

// Folders of old bundles carry the English names of languages.
constexpr std::array<Alias, 21> kEnglishNames = {{
    {"czech", "cs"},   {"chinese", "zh"},    {"danish", "da"},  {"dutch", "nl"},     {"english", "en"},
    {"finnish", "fi"}, {"french", "fr"},     {"german", "de"},  {"greek", "el"},     {"hungarian", "hu"},
    {"italian", "it"}, {"japanese", "ja"},   {"korean", "ko"},  {"norwegian", "nb"}, {"no", "nb"},
    {"polish", "pl"},  {"portuguese", "pt"}, {"russian", "ru"}, {"spanish", "es"},   {"swedish", "sv"},
    {"turkish", "tr"},
}};

// Locales name a country where folders name a script.
constexpr std::array<Alias, 5> kChineseScripts = {{
    {"zh-cn", "zh-hans"},
    {"zh-sg", "zh-hans"},
    {"zh-tw", "zh-hant"},
    {"zh-hk", "zh-hant"},
    {"zh-mo", "zh-hant"},
}};

template <std::size_t N>
std::string_view translated(const std::array<Alias, N>& aliases, std::string_view name) {
    const auto found =
        std::find_if(aliases.begin(), aliases.end(), [&](const Alias& alias) { return alias.first == name; });
    return found != aliases.end() ? found->second : name;
}

/// `de-at` for `de_AT.UTF-8@euro` and for `de-AT`; `en` for `English`.
std::string canonicalTag(std::string_view name) {
    std::string tag(name.substr(0, name.find_first_of(".@")));
    for (char& c : tag) {
        if (c == '_') {
            c = '-';
        } else if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c + ('a' - 'A'));
        }
    }
    const std::size_t end = std::min(tag.find('-'), tag.size());
    return std::string(translated(kEnglishNames, tag.substr(0, end))) + tag.substr(end);
}

std::string_view languageOf(std::string_view tag) {
    return tag.substr(0, tag.find('-'));
}

/// The folder for a language: of the same tag, of its script, of the language alone, else of the language in
/// any other country.
std::optional<std::string> matchFolder(const std::vector<std::string>& available, std::string_view language) {
    const std::string tag = canonicalTag(language);
    const auto folderWhere = [&](auto&& suits) -> std::optional<std::string> {
        const auto found = std::find_if(available.begin(), available.end(), [&](const std::string& folder) {
            return suits(canonicalTag(folder));
        });
        return found != available.end() ? std::optional(*found) : std::nullopt;
    };
    for (const std::string_view wanted :
         {std::string_view(tag), translated(kChineseScripts, tag), languageOf(tag)}) {
        if (auto folder = folderWhere([&](const std::string& candidate) { return candidate == wanted; })) {
            return folder;
        }
    }
    return folderWhere(
        [&](const std::string& candidate) { return languageOf(candidate) == languageOf(tag); });
}

std::string firstSetVariable(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

}  // namespace

std::vector<std::string> preferredLanguages() {
    const std::string locale = firstSetVariable({"LC_ALL", "LC_MESSAGES", "LANG"});
    const std::string name = locale.substr(0, locale.find_first_of(".@"));
    if (name.empty() || name == "C" || name == "POSIX") {
        return {};
    }
    std::vector<std::string> languages;
    const std::string listed = firstSetVariable({"LANGUAGE"});
    std::string_view list = listed;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        if (end > 0) {
            languages.emplace_back(list.substr(0, end));
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    languages.push_back(name);
    return languages;
}

std::vector<std::string> chooseLanguageFolders(const std::vector<std::string>& available,
                                               const std::vector<std::string>& preferred,
                                               std::string_view developmentRegion) {
    std::vector<std::string> chosen;
    const auto add = [&](const std::optional<std::string>& folder) {
        if (folder && std::find(chosen.begin(), chosen.end(), *folder) == chosen.end()) {
            chosen.push_back(*folder);
        }
        return folder.has_value();
    };
    for (const std::string& language : preferred) {
        if (add(matchFolder(available, language))) {
            break;
        }
    }
    add(matchFolder(available, developmentRegion));
    add(matchFolder(available, "Base"));
    return chosen;
}

}  // namespace rovescio::platform
