// The program headers of an ELF file against the file's length.
#include "code_file.h"

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <system_error>
#include <vector>

namespace rovescio::platform {

namespace {

/// Whether a range of bytes ends before a size, also where the numbers are wild.
bool fits(std::uintmax_t offset, std::uintmax_t length, std::uintmax_t size) {
    return offset <= size && length <= size - offset;
}

}  // namespace

bool isWholeLibrary(const std::filesystem::path& path) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    ElfW(Ehdr) header{};
    if (error || !file.read(reinterpret_cast<char*>(&header), sizeof header)) {
        return false;
    }
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_phentsize != sizeof(ElfW(Phdr))) {
        return false;
    }
    std::vector<ElfW(Phdr)> segments(header.e_phnum);
    const auto length = static_cast<std::streamsize>(segments.size() * sizeof(ElfW(Phdr)));
    if (!fits(header.e_phoff, static_cast<std::uintmax_t>(length), size) ||
        !file.seekg(static_cast<std::streamoff>(header.e_phoff)) ||
        !file.read(reinterpret_cast<char*>(segments.data()), length)) {
        return false;
    }
    return std::all_of(segments.begin(), segments.end(), [&](const ElfW(Phdr) & segment) {
        return segment.p_type != PT_LOAD || fits(segment.p_offset, segment.p_filesz, size);
    });
}

}  // namespace rovescio::platform
