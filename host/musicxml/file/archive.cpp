// Reading and writing of compressed scores with libzip, in memory.
#include "musicxml/file/archive.h"

#include <zip.h>

#include <array>
#include <cstring>
#include <memory>
#include <string_view>

#include "xml/tree.h"

namespace rovescio::musicxml {

namespace {

constexpr const char* kContainer = "META-INF/container.xml";
constexpr std::size_t kMaxContainerBytes = 1 << 20;
constexpr const char* kNewRootFile = "score.musicxml";
constexpr const char* kMediaTypeMember = "mimetype";
constexpr const char* kMediaType = "application/vnd.recordare.musicxml";
constexpr zip_uint16_t kFirstDosDate = 1 << 5 | 1;  // 1 January 1980
constexpr const char* kNewContainer =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<container>\n"
    "  <rootfiles>\n"
    "    <rootfile full-path=\"score.musicxml\" "
    "media-type=\"application/vnd.recordare.musicxml+xml\"/>\n"
    "  </rootfiles>\n"
    "</container>\n";

engine::Problem broken(const std::string& what, const std::string& file) {
    return {what, file, 0, {}, "Get the file again, or export the score uncompressed."};
}

struct ArchiveCloser {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct SourceCloser {
    void operator()(zip_source_t* source) const { zip_source_free(source); }
};
struct MemberCloser {
    void operator()(zip_file_t* member) const { zip_fclose(member); }
};

// An archive over bytes in memory. The source outlives the archive, so that
// what was written can be read.
struct Archive {
    std::unique_ptr<zip_source_t, SourceCloser> source;
    std::unique_ptr<zip_t, ArchiveCloser> zip;
};

Archive open(const void* bytes, std::size_t size, int flags) {
    Archive archive;
    archive.source.reset(zip_source_buffer_create(bytes, size, 0, nullptr));
    if (!archive.source) return archive;
    archive.zip.reset(zip_open_from_source(archive.source.get(), flags, nullptr));
    // The archive owns one reference now; a second one keeps the source for
    // reading the result.
    if (archive.zip) zip_source_keep(archive.source.get());
    return archive;
}

enum class Unpacked { fine, missing, encrypted, large, damaged };

Unpacked unpack(zip_t* zip, const char* name, std::size_t maxBytes, std::string& contents) {
    const zip_int64_t index = zip_name_locate(zip, name, 0);
    if (index < 0) return Unpacked::missing;
    zip_stat_t stat;
    if (zip_stat_index(zip, static_cast<zip_uint64_t>(index), 0, &stat) != 0) return Unpacked::damaged;
    if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && stat.encryption_method != ZIP_EM_NONE) {
        return Unpacked::encrypted;
    }
    if ((stat.valid & ZIP_STAT_SIZE) != 0 && stat.size > maxBytes) return Unpacked::large;
    const std::unique_ptr<zip_file_t, MemberCloser> member(
        zip_fopen_index(zip, static_cast<zip_uint64_t>(index), 0));
    if (!member) return Unpacked::damaged;
    // The announced size is not trusted: room grows with what really comes.
    char buffer[1 << 16];
    while (true) {
        const zip_int64_t count = zip_fread(member.get(), buffer, sizeof buffer);
        if (count < 0) return Unpacked::damaged;
        if (count == 0) return Unpacked::fine;
        if (contents.size() + static_cast<std::size_t>(count) > maxBytes) return Unpacked::large;
        contents.append(buffer, static_cast<std::size_t>(count));
    }
}

// Replaces or adds a member; the bytes must live until the archive is closed.
bool put(zip_t* zip, const char* name, const void* bytes, std::size_t size, zip_int32_t method) {
    zip_source_t* const source = zip_source_buffer(zip, bytes, size, 0);
    if (source == nullptr) return false;
    const zip_int64_t index = zip_file_add(zip, name, source, ZIP_FL_OVERWRITE | ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(source);
        return false;
    }
    // A fixed date, the first that the format can hold: the same score makes the same bytes at any time.
    const auto member = static_cast<zip_uint64_t>(index);
    return zip_set_file_compression(zip, member, method, 0) == 0 &&
           zip_file_set_dostime(zip, member, 0, kFirstDosDate, 0) == 0;
}

engine::Result<std::string> finish(Archive& archive, const std::string& file) {
    const engine::Problem failure = broken("the compressed score cannot be written", file);
    if (zip_close(archive.zip.get()) != 0) return failure;
    (void)archive.zip.release();
    zip_source_t* const source = archive.source.get();
    zip_stat_t stat;
    if (zip_source_stat(source, &stat) != 0 || zip_source_open(source) != 0) return failure;
    std::string bytes(stat.size, '\0');
    const zip_int64_t count = zip_source_read(source, bytes.data(), bytes.size());
    zip_source_close(source);
    if (count < 0 || static_cast<std::size_t>(count) != bytes.size()) return failure;
    return bytes;
}

engine::Problem explain(Unpacked state, const std::string& member, std::size_t maxBytes,
                        const std::string& file) {
    switch (state) {
        case Unpacked::missing:
            return broken("the compressed score lacks its member " + member, file);
        case Unpacked::encrypted:
            return {"the compressed score is encrypted", file, 0, {}, "Save it without a password."};
        case Unpacked::large:
            return tooLarge(maxBytes, file);
        default:
            return broken("the compressed score is damaged in its member " + member, file);
    }
}

}  // namespace

engine::Problem tooLarge(std::size_t maxBytes, const std::string& file) {
    return {"the score is larger than " + std::to_string(maxBytes) + " bytes",
            file,
            0,
            {},
            "Split the score, or raise --max-size."};
}

namespace {

// The path of the first root file that the container names; empty when it names none.
std::string rootFileIn(std::string_view container) {
    static constexpr auto kNames = std::to_array<std::string_view>({"container", "rootfiles", "rootfile"});
    const xml::Tree tree(container, kNames);
    xml::Element element = tree.rootElement();
    for (xml::Name name = 1; element.exists() && name < kNames.size(); ++name) element = element.child(name);
    return element.exists() ? std::string(element.attribute("full-path")) : std::string();
}

}  // namespace

bool looksLikeArchive(std::string_view bytes) {
    return bytes.starts_with("PK\x03\x04") || bytes.starts_with("PK\x05\x06");
}

engine::Result<ArchivedScore> unpackScore(std::string_view archive, std::size_t maxBytes,
                                          const std::string& file) {
    const Archive opened = open(archive.data(), archive.size(), ZIP_RDONLY);
    if (!opened.zip) return broken("the compressed score is not a valid zip archive", file);
    std::string container;
    const Unpacked state = unpack(opened.zip.get(), kContainer, kMaxContainerBytes, container);
    if (state != Unpacked::fine) return explain(state, kContainer, kMaxContainerBytes, file);
    ArchivedScore score;
    score.rootFile = rootFileIn(container);
    if (score.rootFile.empty()) {
        return broken("the compressed score does not say in " + std::string(kContainer) +
                          " which of its members is the score",
                      file);
    }
    const Unpacked root = unpack(opened.zip.get(), score.rootFile.c_str(), maxBytes, score.bytes);
    if (root != Unpacked::fine) return explain(root, score.rootFile, maxBytes, file);
    return score;
}

engine::Result<std::string> repackScore(std::string_view archive, const std::string& rootFile,
                                        const std::string& score, const std::string& file) {
    Archive opened = open(archive.data(), archive.size(), 0);
    if (!opened.zip || !put(opened.zip.get(), rootFile.c_str(), score.data(), score.size(), ZIP_CM_DEFLATE)) {
        return broken("the compressed score cannot be written", file);
    }
    return finish(opened, file);
}

engine::Result<std::string> packScore(const std::string& score, const std::string& file) {
    Archive created = open(nullptr, 0, ZIP_CREATE | ZIP_TRUNCATE);
    zip_t* const zip = created.zip.get();
    // The media type stands first and uncompressed, so that it can be read
    // without unpacking.
    if (zip == nullptr || !put(zip, kMediaTypeMember, kMediaType, std::strlen(kMediaType), ZIP_CM_STORE) ||
        !put(zip, kContainer, kNewContainer, std::strlen(kNewContainer), ZIP_CM_DEFLATE) ||
        !put(zip, kNewRootFile, score.data(), score.size(), ZIP_CM_DEFLATE)) {
        return broken("the compressed score cannot be written", file);
    }
    return finish(created, file);
}

}  // namespace rovescio::musicxml
