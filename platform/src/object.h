// The root of all objects of the subset: a kind, a thread-safe reference count, equality and description.
#pragma once

#include <CoreFoundation/CFBase.h>

#include <atomic>
#include <memory>
#include <string>

namespace rovescio::platform {

/// What an object is; the values are the subset's CFTypeIDs.
enum class Kind : CFTypeID { kString = 1, kNumber, kBoolean, kUrl, kBundle };

/// Whether an object's life ends with its last reference.
enum class Lifetime { kCounted, kForever };

class Object {
  public:
    explicit Object(Kind kind, Lifetime lifetime = Lifetime::kCounted) : kind_(kind), lifetime_(lifetime) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    [[nodiscard]] Kind kind() const { return kind_; }

    void retain() const;
    void release() const;

    /// Takes a reference unless the last one is gone already and the object about to be destroyed.
    [[nodiscard]] bool retainIfAlive() const;

    /// False from the moment the last reference is given back.
    [[nodiscard]] bool isAlive() const { return references_.load() > 0; }

    /// Compares the content with that of another object of the same kind.
    [[nodiscard]] virtual bool equals(const Object& other) const { return this == &other; }

    /// The text that %@ writes.
    [[nodiscard]] virtual std::u16string description() const = 0;

  private:
    mutable std::atomic<CFIndex> references_{1};
    Kind kind_;
    Lifetime lifetime_;
};

struct ReleaseObject {
    void operator()(const Object* object) const { object->release(); }
};

/// Holds one reference to an object and gives it back.
template <class T>
using Owned = std::unique_ptr<T, ReleaseObject>;

/// Ends the process with a message that names the function whose caller passed NULL or an impossible index.
[[noreturn]] void rejectArgument(const char* function);

/// The object behind a handle that must not be NULL.
template <class T>
T& required(T* object, const char* function) {
    if (object == nullptr) {
        rejectArgument(function);
    }
    return *object;
}

}  // namespace rovescio::platform
