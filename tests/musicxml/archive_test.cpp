// Compressed scores: other members stay, and hostile archives are refused.
#include <gtest/gtest.h>
#include <zip.h>

#include "musicxml/score_builder.h"

namespace rovescio::test {
namespace {

using musicxml::Container;

struct Member {
    std::string name;
    std::string bytes;
    zip_int32_t method = ZIP_CM_DEFLATE;
    const char* password = nullptr;
};

std::string zipOf(const std::vector<Member>& members) {
    zip_source_t* const source = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(source);
    zip_t* const zip = zip_open_from_source(source, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const Member& member : members) {
        const zip_int64_t index = zip_file_add(
            zip, member.name.c_str(), zip_source_buffer(zip, member.bytes.data(), member.bytes.size(), 0), 0);
        const auto at = static_cast<zip_uint64_t>(index);
        zip_set_file_compression(zip, at, member.method, 0);
        if (member.password) zip_file_set_encryption(zip, at, ZIP_EM_AES_128, member.password);
    }
    EXPECT_EQ(zip_close(zip), 0);
    zip_stat_t stat;
    zip_source_stat(source, &stat);
    std::string bytes(stat.size, '\0');
    zip_source_open(source);
    zip_source_read(source, bytes.data(), bytes.size());
    zip_source_close(source);
    zip_source_free(source);
    return bytes;
}

std::vector<Member> membersOf(const std::string& bytes) {
    zip_t* const zip = zip_open_from_source(zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr),
                                            ZIP_RDONLY, nullptr);
    EXPECT_NE(zip, nullptr);
    std::vector<Member> members;
    for (zip_int64_t i = 0; i < zip_get_num_entries(zip, 0); ++i) {
        zip_stat_t stat;
        zip_stat_index(zip, static_cast<zip_uint64_t>(i), 0, &stat);
        std::string contents(stat.size, '\0');
        zip_file_t* const member = zip_fopen_index(zip, static_cast<zip_uint64_t>(i), 0);
        zip_fread(member, contents.data(), contents.size());
        zip_fclose(member);
        members.push_back({stat.name, contents, stat.comp_method});
    }
    zip_discard(zip);
    return members;
}

Member container(const std::string& path) {
    return {"META-INF/container.xml",
            "<container><rootfiles><rootfile full-path=\"" + path + "\"/></rootfiles></container>"};
}

std::string smallScore() {
    return scoreOf({note("c4:w")});
}

TEST(CompressedScore, otherMembersStay) {
    const std::string archive = zipOf({{"mimetype", "application/x", ZIP_CM_STORE},
                                       container("music/s.xml"),
                                       {"cover.png", "\x89PNG"},
                                       {"music/s.xml", smallScore()}});
    OpenScore score = open(archive);
    EXPECT_EQ(score.file.container(), Container::compressed);
    EXPECT_EQ(score.file.write(score.document, Container::compressed).value().bytes(), archive);
    EXPECT_EQ(score.written(), smallScore());

    score.setPitch("d4");
    const auto members = membersOf(score.file.write(score.document, Container::compressed).value().bytes());
    ASSERT_EQ(members.size(), 4U);
    EXPECT_EQ(members[0].name, "mimetype");
    EXPECT_EQ(members[0].method, ZIP_CM_STORE);
    EXPECT_EQ(members[2].bytes, "\x89PNG");
    EXPECT_EQ(members[3].name, "music/s.xml");
    EXPECT_EQ(members[3].bytes, score.written());
}

TEST(CompressedScore, badArchivesAreRefused) {
    const std::string good = zipOf({container("s.xml"), {"s.xml", smallScore()}});
    std::string flipped = good;
    flipped[good.find("s.xml", good.find("PK\x03\x04", 4)) + 40] ^= 0x55;
    // The size that the directory announces for the last member is made small: the contents come all the
    // same.
    std::string lying = zipOf({container("s.xml"), {"s.xml", std::string(1 << 20, ' ')}});
    const std::size_t directory = lying.rfind("PK\x01\x02");
    lying.replace(directory + 24, 4, std::string("\x10\0\0\0", 4));
    const std::string again = ". Get the file again, or export the score uncompressed.";
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"cut off", good.substr(0, good.size() / 2),
         "the compressed score is not a valid zip archive" + again},
        {"no container", zipOf({{"s.xml", smallScore()}}),
         "the compressed score lacks its member META-INF/container.xml" + again},
        {"empty container", zipOf({{"META-INF/container.xml", "<container/>"}}),
         "the compressed score does not say in META-INF/container.xml which of its members is the score" +
             again},
        {"no score", zipOf({container("s.xml")}), "the compressed score lacks its member s.xml" + again},
        {"damaged", flipped, "the compressed score is damaged in its member s.xml" + again},
        {"bomb", zipOf({container("s.xml"), {"s.xml", std::string(1 << 20, ' ')}}),
         "the score is larger than 65536 bytes. Split the score, or raise --max-size."},
        {"bomb with a small label", lying,
         "the score is larger than 65536 bytes. Split the score, or raise --max-size."},
        {"encrypted", zipOf({container("s.xml"), {"s.xml", smallScore(), ZIP_CM_DEFLATE, "secret"}}),
         "the compressed score is encrypted. Save it without a password."},
    };
    ASSERT_EQ(problemOf(good, {65536}), "");
    ASSERT_EQ(problemOf(smallScore(), {smallScore().size()}), "");
    ASSERT_NE(problemOf(smallScore(), {smallScore().size() - 1}), "");
    for (const auto& [name, bytes, message] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(problemOf(bytes, {65536}), "test.musicxml: " + message);
    }
}

}  // namespace
}  // namespace rovescio::test
