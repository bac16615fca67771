// The object behind CFStringRef.
#pragma once

#include <CoreFoundation/CFString.h>

#include <string>
#include <utility>

#include "object.h"

struct __CFString final : rovescio::platform::Object {
    explicit __CFString(std::u16string content,
                        rovescio::platform::Lifetime lifetime = rovescio::platform::Lifetime::kCounted)
        : Object(rovescio::platform::Kind::kString, lifetime), text(std::move(content)) {}

    [[nodiscard]] bool equals(const Object& other) const override {
        return text == static_cast<const __CFString&>(other).text;
    }
    [[nodiscard]] std::u16string description() const override { return text; }

    const std::u16string text;
};
