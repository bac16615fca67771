// Resources and tables of strings: the search through the language folders and the cache of tables read.
#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "bundle.h"
#include "encodings.h"
#include "file_bytes.h"
#include "languages.h"
#include "url.h"

using namespace rovescio::platform;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kLanguageSuffix = ".lproj";

std::vector<std::string> languagesIn(const fs::path& resources) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(resources, error), end; !error && entry != end;
         entry.increment(error)) {
        const fs::path& path = entry->path();
        std::error_code ignored;
        if (path.extension() == kLanguageSuffix && entry->is_directory(ignored)) {
            names.push_back(path.stem().native());
        }
    }
    // Directories list their entries in any order, but the choice must not depend on it.
    std::sort(names.begin(), names.end());
    return names;
}

/// A name for a file or folder below the resources; nothing when it could lead out of them.
std::optional<std::string> safeName(CFStringRef name) {
    if (name == nullptr) {
        return std::string();
    }
    auto bytes = encodeName(name->text);
    if (!bytes) {
        return std::nullopt;
    }
    const fs::path path(*bytes);
    const bool leavesFolder = path.is_absolute() || std::find(path.begin(), path.end(), "..") != path.end();
    return leavesFolder ? std::nullopt : std::move(bytes);
}

bool isPresent(const fs::path& path) {
    std::error_code error;
    return fs::exists(path, error);
}

}  // namespace

const std::vector<std::string>& __CFBundle::languageFolders() const {
    std::call_once(languageChoice_, [this] {
        const CFStringRef region = infoString(kCFBundleDevelopmentRegionKey);
        const auto regionName = region != nullptr ? encodeName(region->text) : std::nullopt;
        languageFolders_ = chooseLanguageFolders(languagesIn(layout.resources), preferredLanguages(),
                                                 regionName.value_or("en"));
    });
    return languageFolders_;
}

std::optional<fs::path> __CFBundle::resource(const std::string& folder, const std::string& fileName) const {
    fs::path path = layout.resources / folder / fileName;
    if (isPresent(path)) {
        return path;
    }
    for (const std::string& language : languageFolders()) {
        path = layout.resources / (language + std::string(kLanguageSuffix)) / folder / fileName;
        if (isPresent(path)) {
            return path;
        }
    }
    return std::nullopt;
}

Dictionary __CFBundle::readTable(const std::u16string& table) const {
    const auto name = encodeName(table);
    if (!name || name->find('/') != std::string::npos) {
        return {};
    }
    const auto path = resource({}, *name + ".strings");
    const auto bytes = path ? readFile(*path) : std::nullopt;
    return bytes ? parsePropertyList(*bytes) : Dictionary{};
}

const Object* __CFBundle::tableEntry(const std::u16string& table, const std::u16string& key) const {
    const std::scoped_lock lock(tableMutex_);
    auto cached = tables_.find(table);
    if (cached == tables_.end()) {
        cached = tables_.emplace(table, readTable(table)).first;
    }
    const auto found = cached->second.find(key);
    return found != cached->second.end() ? found->second.get() : nullptr;
}

CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                                        CFStringRef table) {
    const __CFBundle& source = required(bundle, __func__);
    const bool isDefaultTable = table == nullptr || table->text.empty();
    const Object* entry = key != nullptr
                              ? source.tableEntry(isDefaultTable ? u"Localizable" : table->text, key->text)
                              : nullptr;
    CFStringRef result = nullptr;
    if (entry != nullptr && entry->kind() == Kind::kString) {
        result = static_cast<CFStringRef>(entry);
    } else if (key == nullptr || (value != nullptr && !value->text.empty())) {
        result = value;
    } else {
        result = key;
    }
    if (result == nullptr) {
        return new __CFString(u"");
    }
    result->retain();
    return result;
}

CFURLRef CFBundleCopyResourceURL(CFBundleRef bundle, CFStringRef name, CFStringRef type,
                                 CFStringRef directory) {
    const __CFBundle& source = required(bundle, __func__);
    auto fileName = name != nullptr ? safeName(name) : std::nullopt;
    const auto suffix = safeName(type);
    const auto folder = safeName(directory);
    if (!fileName || fileName->empty() || !suffix || !folder) {
        return nullptr;
    }
    if (!suffix->empty()) {
        *fileName += suffix->front() == '.' ? *suffix : '.' + *suffix;
    }
    const auto path = source.resource(*folder, *fileName);
    std::error_code error;
    return path ? new __CFURL(path->native(), fs::is_directory(*path, error)) : nullptr;
}
