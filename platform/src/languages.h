// The languages of the user and the language folders of a bundle that suit them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace rovescio::platform {

/// The user's languages, most wanted first, as locale names such as `de_AT`; empty without a preference
/// (locale C or POSIX, or none). Taken from LC_ALL, LC_MESSAGES or LANG, with the list in LANGUAGE first.
std::vector<std::string> preferredLanguages();

/// Chooses among the names of a bundle's language folders (without `.lproj`) those to be searched, in order:
/// the best one for the user, the one of the development region, and `Base`.
std::vector<std::string> chooseLanguageFolders(const std::vector<std::string>& available,
                                               const std::vector<std::string>& preferred,
                                               std::string_view developmentRegion);

}  // namespace rovescio::platform
