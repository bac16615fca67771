// The code of a plug-in bundle by its exported names, without what a host that only runs it requires.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <array>
#include <cstdint>
#include <string>

#include "contract/descriptor.h"
#include "contract/records.h"

namespace rovescio::validate {

// The two names of every entry point.
enum class Naming { full, alias };

struct EntryPointNames {
    const char* full;
    const char* alias;
    [[nodiscard]] const char* by(Naming naming) const { return naming == Naming::full ? full : alias; }
};

inline constexpr EntryPointNames kVersionNames = {"ScorixExtensionVersion", "Ext_getversion"};
inline constexpr EntryPointNames kInitNames = {"ScorixExtensionInit", "Ext_init"};
inline constexpr EntryPointNames kEnumerateNames = {"ScorixExtensionEnumerate_UTF16", "Ext_enumerate_UTF16"};
inline constexpr EntryPointNames kInvokeNames = {"ScorixExtensionInvoke", "Ext_invoke"};
inline constexpr EntryPointNames kTerminateNames = {"ScorixExtensionTerminate", "Ext_terminate"};
inline constexpr EntryPointNames kMenuStatusNames = {"ScorixExtensionGetMenuStatus", "Ext_getmenustatus"};
inline constexpr std::array kEntryPointNames = {kVersionNames, kInitNames,      kEnumerateNames,
                                                kInvokeNames,  kTerminateNames, kMenuStatusNames};

class PluginImage {
  public:
    // The bundle stays open until the process ends.
    explicit PluginImage(const std::string& path);

    // Null when there is no such folder.
    [[nodiscard]] CFBundleRef bundle() const { return bundle_; }

    // Null when the bundle's own code does not export the name.
    template <class Function>
    [[nodiscard]] Function* function(const std::string& name) const {
        return reinterpret_cast<Function*>(find(CFBundleGetFunctionPointerForName, name));
    }
    template <class Variable>
    [[nodiscard]] Variable* variable(const std::string& name) const {
        return static_cast<Variable*>(find(CFBundleGetDataPointerForName, name));
    }

    // What the entry points answer; each must exist.
    [[nodiscard]] int main() const;
    [[nodiscard]] std::uint32_t version(Naming naming, std::uint32_t hostVersion) const;
    int init(Naming naming, std::uint32_t& output) const;
    int enumerate(Naming naming, short command, ExtensionDescriptor& descriptor) const;
    [[nodiscard]] int menuStatus(Naming naming) const;
    void terminate(Naming naming) const;

  private:
    using Lookup = void* (*)(CFBundleRef, CFStringRef);
    [[nodiscard]] void* find(Lookup lookup, const std::string& name) const;

    CFBundleRef bundle_;
};

}  // namespace rovescio::validate
