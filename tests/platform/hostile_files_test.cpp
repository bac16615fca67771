// Files made to break a reader: deep nesting, shared and circular parts, noise, enormous and endless files.
#include <sys/stat.h>

#include <cstdint>
#include <random>
#include <vector>

#include "support.h"

namespace platform_tests {
namespace {

constexpr const char* kTable = "Contents/Resources/Localizable.strings";
constexpr std::size_t kManyLevels = 300000;

std::string repeated(std::string_view part, std::size_t count) {
    std::string text;
    text.reserve(part.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

std::string bigEndian(std::uint64_t value, int width) {
    std::string bytes;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<char>(value >> shift));
    }
    return bytes;
}

/// A binary property list of the given encoded objects, the first of which is the root. References between
/// them are four bytes wide.
std::string binaryList(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    const std::size_t tableOffset = bytes.size();
    return bytes + table + std::string(6, '\0') + "\4\4" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(tableOffset, 8);
}

/// The encoded dictionary { k = v; } plus one pair whose value is the object at `extra`, for objects laid
/// out as: this dictionary, "k", "v", "x", ...
std::string rootWithExtra(std::uint64_t extra) {
    return "\xD2" + bigEndian(1, 4) + bigEndian(3, 4) + bigEndian(2, 4) + bigEndian(extra, 4);
}

std::vector<std::string> listWithExtra() {
    return {rootWithExtra(4), "\x51k", "\x51v", "\x51x"};
}

class HostileFileTest : public BundleTest {
  protected:
    /// What the key k gives when the content is a table, and that the same content as information is
    /// survived.
    [[nodiscard]] std::u16string valueIn(std::string_view content) const {
        write("Contents/Info.plist", content);
        write(kTable, content);
        return localized(u"k");
    }
};

TEST_F(HostileFileTest, ModestNestingIsReadOver) {
    const std::string lists = repeated("(", 50) + repeated(")", 50);
    EXPECT_EQ(valueIn("x = " + lists + "; k = v;"), u"v");
    const std::string arrays = repeated("<array>", 50) + repeated("</array>", 50);
    EXPECT_EQ(valueIn(xmlPropertyList("<key>x</key>" + arrays + "<key>k</key><string>v</string>")), u"v");
    auto objects = listWithExtra();
    objects.push_back("\xA1" + bigEndian(5, 4));
    objects.emplace_back("\xA0");
    EXPECT_EQ(valueIn(binaryList(objects)), u"v");
}

TEST_F(HostileFileTest, DeepNestingIsRefused) {
    EXPECT_EQ(valueIn("k = v; x = " + repeated("(", kManyLevels)), u"<miss>");
    EXPECT_EQ(valueIn("k = v; x = " + repeated("{a=", kManyLevels)), u"<miss>");
    const std::string arrays = repeated("<array>", kManyLevels) + repeated("</array>", kManyLevels);
    EXPECT_EQ(valueIn(xmlPropertyList("<key>k</key><string>v</string><key>x</key>" + arrays)), u"<miss>");
    auto objects = listWithExtra();
    for (std::size_t i = 4; i < kManyLevels; ++i) {
        objects.push_back("\xA1" + bigEndian(i + 1, 4));
    }
    objects.emplace_back("\xA0");
    EXPECT_EQ(valueIn(binaryList(objects)), u"<miss>");
}

TEST_F(HostileFileTest, CirclesAndMultipliedPartsAreRefused) {
    auto circle = listWithExtra();
    circle.push_back("\xA1" + bigEndian(0, 4));
    EXPECT_EQ(valueIn(binaryList(circle)), u"<miss>");

    auto doubling = listWithExtra();
    for (std::uint64_t i = 5; i < 69; ++i) {
        doubling.push_back("\xA2" + bigEndian(i, 4) + bigEndian(i, 4));
    }
    doubling.emplace_back("\xA0");
    EXPECT_EQ(valueIn(binaryList(doubling)), u"<miss>");

    // One long text many times over, which a tree would copy each time.
    const auto copied = [](std::size_t times) {
        auto copies = listWithExtra();
        copies.push_back("\xAF\x12" + bigEndian(times, 4) + repeated(bigEndian(5, 4), times));
        copies.push_back("\x5F\x12" + bigEndian(100000, 4) + std::string(100000, 'x'));
        return binaryList(copies);
    };
    EXPECT_EQ(valueIn(copied(10)), u"v");
    EXPECT_EQ(valueIn(copied(5000)), u"<miss>");
}

TEST_F(HostileFileTest, BinaryListsWithWrongSizesAreRefused) {
    auto objects = listWithExtra();
    objects.emplace_back("\x10\x07");
    const std::string sound = binaryList(objects);
    ASSERT_EQ(valueIn(sound), u"v");
    for (std::size_t size = 0; size < sound.size(); ++size) {
        EXPECT_EQ(valueIn(sound.substr(0, size)), u"<miss>") << size;
    }
    const std::string_view oversized[] = {"\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
                                          "\x6F\x12\x80\0\0\0",
                                          "\xAF\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
                                          "\x4F\x1F",
                                          "\x5F\x5F",
                                          "\xA1\xFF\xFF\xFF\xFF",
                                          "\xF0"};
    for (const std::string_view object : oversized) {
        objects.back() = object;
        EXPECT_EQ(valueIn(binaryList(objects)), u"<miss>") << ::testing::PrintToString(object);
    }
}

TEST_F(HostileFileTest, EverySingleWrongByteIsSurvived) {
    auto objects = listWithExtra();
    objects.emplace_back("\x10\x07");
    const std::string binary = binaryList(objects);
    const std::string xml = xmlPropertyList("<key>k</key><string>v &lt;</string>");
    for (const std::string& sound :
         {binary, xml, std::string("/* c */ \"k\" = \"\\U00e9\"; a = (b, <01>);")}) {
        for (std::size_t i = 0; i < sound.size(); ++i) {
            for (const char wrong : {'\0', '\xFF', '<', '"', static_cast<char>(sound[i] ^ 1)}) {
                std::string changed = sound;
                changed[i] = wrong;
                EXPECT_NE(valueIn(changed), u"<NULL>");
            }
        }
    }
}

TEST_F(HostileFileTest, NoiseIsSurvived) {
    std::mt19937 random(20130);
    std::string noise(std::size_t{10} << 20, '\0');
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
    EXPECT_EQ(valueIn(noise), u"<miss>");
    EXPECT_EQ(valueIn("bplist00" + noise), u"<miss>");
    EXPECT_EQ(valueIn("\xFF\xFE" + noise), u"<miss>");
    std::transform(noise.begin(), noise.end(), noise.begin(),
                   [](char c) { return static_cast<char>(c & 0x7F); });
    EXPECT_EQ(valueIn("<?xml version=\"1.0\"?>" + noise), u"<miss>");
    EXPECT_EQ(valueIn("k = v; x = \"" + noise), u"<miss>");
    EXPECT_EQ(valueIn(std::string(std::size_t{10} << 20, '\0')), u"<miss>");
}

TEST_F(HostileFileTest, EmbeddedZerosArePartOfQuotedTextOnly) {
    EXPECT_EQ(valueIn({"k = \"a\0b\";", 10}), (std::u16string{u'a', u'\0', u'b'}));
    EXPECT_EQ(valueIn({"k = a\0b;", 8}), u"<miss>");
}

TEST_F(HostileFileTest, SpecialFilesAreNotRead) {
    write(kTable, "");
    std::filesystem::remove(folder() / kTable);
    ASSERT_EQ(::mkfifo((folder() / kTable).c_str(), 0600), 0);
    EXPECT_EQ(localized(u"k"), u"<miss>");
    std::filesystem::remove(folder() / kTable);
    std::filesystem::create_symlink("/dev/zero", folder() / kTable);
    EXPECT_EQ(localized(u"k"), u"<miss>");
    std::filesystem::remove(folder() / kTable);
    std::filesystem::create_directory(folder() / kTable);
    EXPECT_EQ(localized(u"k"), u"<miss>");
    std::filesystem::remove(folder() / kTable);
    write(kTable, "k = v;");
    std::filesystem::resize_file(folder() / kTable, std::uintmax_t{1} << 36);
    EXPECT_EQ(localized(u"k"), u"<miss>");
}

}  // namespace
}  // namespace platform_tests
