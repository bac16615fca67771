// Reference counting and the functions that work on objects of every kind.
#include "object.h"

#include <cstdio>
#include <cstdlib>

namespace rovescio::platform {

void Object::retain() const {
    if (lifetime_ == Lifetime::kCounted) {
        references_.fetch_add(1, std::memory_order_relaxed);
    }
}

void Object::release() const {
    // The last release must see every write that other threads made before theirs.
    if (lifetime_ == Lifetime::kCounted && references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete this;
    }
}

bool Object::retainIfAlive() const {
    CFIndex count = references_.load();
    while (count > 0) {
        if (references_.compare_exchange_weak(count, count + 1)) {
            return true;
        }
    }
    return false;
}

void rejectArgument(const char* function) {
    (void)std::fprintf(stderr, "%s: invalid argument\n", function);
    std::abort();
}

namespace {

const Object& objectOf(CFTypeRef reference, const char* function) {
    return required(static_cast<const Object*>(reference), function);
}

}  // namespace

}  // namespace rovescio::platform

using rovescio::platform::Object;
using rovescio::platform::objectOf;

CFTypeRef CFRetain(CFTypeRef object) {
    objectOf(object, __func__).retain();
    return object;
}

void CFRelease(CFTypeRef object) {
    objectOf(object, __func__).release();
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    return static_cast<CFTypeID>(objectOf(object, __func__).kind());
}

Boolean CFEqual(CFTypeRef first, CFTypeRef second) {
    const Object& left = objectOf(first, __func__);
    const Object& right = objectOf(second, __func__);
    return static_cast<Boolean>(left.kind() == right.kind() && left.equals(right));
}
