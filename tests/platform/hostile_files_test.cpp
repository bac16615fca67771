// Files made to break a reader: deep nesting, shared and circular parts, noise, enormous and endless files.
#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "support.h"

namespace platform_tests {
namespace {

std::string repeated(std::string_view part, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text += part;
    return text;
}

std::string bigEndian(std::uint64_t value, int width = 4) {
    std::string bytes;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift));
    return bytes;
}

/// A binary property list of the encoded dictionary { k = v; x = ...; } whose last value is the first of
/// the further objects, which count from 4. References are four bytes wide.
std::string binaryList(const std::vector<std::string>& further) {
    const std::string root = "\xD2" + bigEndian(1) + bigEndian(3) + bigEndian(2) + bigEndian(4);
    std::vector<std::string> objects = {root, "\x51k", "\x51v", "\x51x"};
    objects.insert(objects.end(), further.begin(), further.end());
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += bigEndian(bytes.size());
        bytes += object;
    }
    return bytes + table + std::string(6, '\0') + "\4\4" + bigEndian(objects.size(), 8) + bigEndian(0, 8) +
           bigEndian(bytes.size(), 8);
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

TEST_F(HostileFileTest, ModestNestingIsReadAndDeepNestingIsRefused) {
    for (const auto& [levels, value] :
         {std::pair{std::size_t{50}, std::u16string_view(u"v")}, {std::size_t{300000}, kMiss}}) {
        const std::string arrays = repeated("<array>", levels) + repeated("</array>", levels);
        EXPECT_EQ(valueIn(xmlPropertyList(entry("k", "v") + "<key>x</key>" + arrays)), value);
        EXPECT_EQ(valueIn("k = v; x = " + repeated("(", levels) + repeated(")", levels) + ";"), value);
    }
    EXPECT_EQ(valueIn("k = v; x = " + repeated("(", 300000)), kMiss);
    EXPECT_EQ(valueIn("k = v; x = " + repeated("{a=", 300000)), kMiss);
    EXPECT_EQ(valueIn(binaryList({"\xA1" + bigEndian(5), "\xA0"})), u"v");
    std::vector<std::string> objects;
    for (std::size_t i = 4; i < 300000; ++i) objects.push_back("\xA1" + bigEndian(i + 1));
    objects.emplace_back("\xA0");
    EXPECT_EQ(valueIn(binaryList(objects)), kMiss);
}

TEST_F(HostileFileTest, CirclesAndMultipliedPartsAreRefused) {
    EXPECT_EQ(valueIn(binaryList({"\xA1" + bigEndian(0)})), kMiss);
    std::vector<std::string> doubling;
    for (std::uint64_t i = 5; i < 69; ++i) doubling.push_back("\xA2" + bigEndian(i) + bigEndian(i));
    doubling.emplace_back("\xA0");
    EXPECT_EQ(valueIn(binaryList(doubling)), kMiss);
    // One long text many times over, which a tree would copy each time.
    const auto copied = [](std::size_t times) {
        return binaryList({"\xAF\x12" + bigEndian(times) + repeated(bigEndian(5), times),
                           "\x5F\x12" + bigEndian(100000) + std::string(100000, 'x')});
    };
    EXPECT_EQ(valueIn(copied(10)), u"v");
    EXPECT_EQ(valueIn(copied(5000)), kMiss);
}

TEST_F(HostileFileTest, BinaryListsWithWrongSizesAreRefused) {
    const std::string sound = binaryList({"\x10\x07"});
    ASSERT_EQ(valueIn(sound), u"v");
    for (std::size_t size = 0; size < sound.size(); ++size)
        EXPECT_EQ(valueIn(sound.substr(0, size)), kMiss) << size;
    for (const char* object :
         {"\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "\xAF\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF",
          "\x6F\x12\x80\x01\x01\x01", "\x4F\x1F", "\x5F\x5F", "\xA1\xFF\xFF\xFF\xFF", "\xF0"})
        EXPECT_EQ(valueIn(binaryList({object})), kMiss) << PrintToString(object);
}

TEST_F(HostileFileTest, EverySingleWrongByteIsSurvived) {
    const std::string xml = xmlPropertyList(entry("k", "v &lt;"));
    for (const std::string& sound :
         {binaryList({"\x10\x07"}), xml, std::string("/* c */ \"k\" = \"\\U00e9\"; a = (b, <01>);")}) {
        for (std::size_t i = 0; i < sound.size(); ++i) {
            for (const char wrong : {'\0', '\xFF', '<', '"', static_cast<char>(sound[i] ^ 1)}) {
                std::string changed = sound;
                changed[i] = wrong;
                EXPECT_NE(valueIn(changed), u"<NULL>");
            }
        }
    }
}

TEST_F(HostileFileTest, SpecialFilesAreNotRead) {
    const auto table = folder() / kTable;
    const std::function<void()> kinds[] = {
        [&] { ASSERT_EQ(::mkfifo(table.c_str(), 0600), 0); },
        [&] { std::filesystem::create_symlink("/dev/zero", table); },
        [&] { std::filesystem::create_directory(table); },
        [&] { write(kTable, "k = v;"), std::filesystem::resize_file(table, std::uintmax_t{1} << 36); },
    };
    for (const auto& make : kinds) {
        write(kTable, "k = v;");
        std::filesystem::remove(table);
        make();
        EXPECT_EQ(localized(u"k"), kMiss);
        std::filesystem::remove(table);
    }
}

}  // namespace
}  // namespace platform_tests
