// The object behind CFURLRef.
#pragma once

#include <CoreFoundation/CFURL.h>

#include <filesystem>
#include <string>

#include "object.h"

struct __CFURL final : rovescio::platform::Object {
    /// A path as given, with the absolute path it meant when the address was made.
    __CFURL(std::string givenPath, bool directory);

    [[nodiscard]] bool equals(const Object& other) const override;
    [[nodiscard]] std::u16string description() const override;

    const std::string path;
    const std::filesystem::path absolute;
    const bool isDirectory;
};
