// File addresses: making them from paths and reading the paths back.
#include "url.h"

#include <cstring>
#include <system_error>
#include <utility>

#include "encodings.h"

using namespace rovescio::platform;

namespace {

std::string withoutTrailingSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

/// Stays relative only when the working directory is gone.
std::filesystem::path absolutePath(const std::string& path) {
    std::error_code error;
    std::filesystem::path absolute = std::filesystem::absolute(path, error);
    return error ? std::filesystem::path(path) : absolute;
}

}  // namespace

__CFURL::__CFURL(std::string givenPath, bool directory)
    : Object(Kind::kUrl),
      path(withoutTrailingSlash(std::move(givenPath))),
      absolute(absolutePath(path)),
      isDirectory(directory) {}

bool __CFURL::equals(const Object& other) const {
    const auto& second = static_cast<const __CFURL&>(other);
    return absolute == second.absolute && isDirectory == second.isDirectory;
}

std::u16string __CFURL::description() const {
    auto text = decode(absolute.native(), kCFStringEncodingUTF8);
    return text ? *std::move(text) : *decode(absolute.native(), kCFStringEncodingISOLatin1);
}

CFTypeID CFURLGetTypeID() {
    return static_cast<CFTypeID>(Kind::kUrl);
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef /*allocator*/, const UInt8* path,
                                                 CFIndex count, Boolean isDirectory) {
    if (count <= 0) {
        return nullptr;
    }
    required(path, __func__);
    std::string bytes(reinterpret_cast<const char*>(path), static_cast<std::size_t>(count));
    if (bytes.find('\0') != std::string::npos) {
        return nullptr;
    }
    return new __CFURL(std::move(bytes), isDirectory != 0);
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                         CFIndex size) {
    const __CFURL& source = required(url, __func__);
    const std::string& path = resolveAgainstBase != 0 ? source.absolute.native() : source.path;
    if (buffer == nullptr || size <= 0 || static_cast<std::size_t>(size) <= path.size()) {
        return 0;
    }
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return 1;
}
