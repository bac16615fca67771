// The object behind CFBundleRef: where a bundle's parts lie and what has been read of them so far.
#pragma once

#include <CoreFoundation/CFBundle.h>

#include <atomic>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "object.h"
#include "property_list.h"
#include "string_object.h"

namespace rovescio::platform {

/// Whether the bundle is that of the running program.
enum class Role { kMain, kLoadable };

/// Folders of a bundle: under Contents, or flat with everything at the top.
struct Layout {
    std::filesystem::path executables;
    std::filesystem::path resources;
    std::filesystem::path infoFile;
};

}  // namespace rovescio::platform

struct __CFBundle final : rovescio::platform::Object {
    /// A bundle at an absolute directory; `place` is that directory without symbolic links.
    __CFBundle(std::filesystem::path bundleDirectory, std::filesystem::path place,
               rovescio::platform::Role bundleRole);
    __CFBundle(const __CFBundle&) = delete;
    __CFBundle& operator=(const __CFBundle&) = delete;
    ~__CFBundle() override;

    [[nodiscard]] std::u16string description() const override;

    /// A string of the information dictionary as the file has it, without localisation; NULL for none.
    [[nodiscard]] CFStringRef infoString(CFStringRef key) const;

    /// The ordinary file with the bundle's code, if there is one.
    [[nodiscard]] std::optional<std::filesystem::path> executable() const;

    /// An object of a table of strings; NULL for a miss. It lives as long as the bundle.
    [[nodiscard]] const rovescio::platform::Object* tableEntry(const std::u16string& table,
                                                               const std::u16string& key) const;

    /// A resource by its file name and the folder inside the resources, both in UTF-8.
    [[nodiscard]] std::optional<std::filesystem::path> resource(const std::string& folder,
                                                                const std::string& fileName) const;

    const std::filesystem::path directory;
    const std::filesystem::path canonicalDirectory;
    const rovescio::platform::Role role;
    const rovescio::platform::Layout layout;
    const rovescio::platform::Dictionary info;

    /// The loader's handle; null while the code has not been loaded through this bundle.
    std::atomic<void*> code{nullptr};

  private:
    [[nodiscard]] const std::vector<std::string>& languageFolders() const;
    [[nodiscard]] rovescio::platform::Dictionary readTable(const std::u16string& table) const;

    mutable std::once_flag languageChoice_;
    mutable std::vector<std::string> languageFolders_;
    mutable std::mutex tableMutex_;
    mutable std::unordered_map<std::u16string, rovescio::platform::Dictionary> tables_;
};
