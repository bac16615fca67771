// The objects behind CFNumberRef and CFBooleanRef.
#pragma once

#include <CoreFoundation/CFNumber.h>

#include <variant>

#include "object.h"

struct __CFNumber final : rovescio::platform::Object {
    explicit __CFNumber(std::variant<SInt64, double> content)
        : Object(rovescio::platform::Kind::kNumber), value(content) {}

    [[nodiscard]] bool equals(const Object& other) const override;
    [[nodiscard]] std::u16string description() const override;

    const std::variant<SInt64, double> value;
};

struct __CFBoolean final : rovescio::platform::Object {
    explicit __CFBoolean(bool content)
        : Object(rovescio::platform::Kind::kBoolean, rovescio::platform::Lifetime::kForever),
          value(content) {}

    [[nodiscard]] std::u16string description() const override { return value ? u"true" : u"false"; }

    const bool value;
};
