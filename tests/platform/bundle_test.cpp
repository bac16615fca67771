// Bundles as directories: when they exist, their identity, identifiers and information dictionaries.
#include "support.h"

namespace platform_tests {
namespace {

namespace fs = std::filesystem;

std::u16string infoValue(const Held<CFBundleRef>& bundle, CFStringRef key) {
    const CFTypeRef value = CFBundleGetValueForInfoDictionaryKey(bundle.get(), key);
    const bool isString = value != nullptr && CFGetTypeID(value) == CFStringGetTypeID();
    return value == nullptr || isString ? units(static_cast<CFStringRef>(value)) : u"<other>";
}

TEST_F(BundleTest, AnyDirectoryIsABundle) {
    EXPECT_TRUE(open());
    write("Contents/Info.plist", "not a property list");
    const auto broken = open();
    ASSERT_TRUE(broken);
    EXPECT_EQ(CFGetTypeID(broken.get()), CFBundleGetTypeID());
    EXPECT_EQ(infoValue(broken, kCFBundleExecutableKey), u"<NULL>");
    EXPECT_EQ(CFBundleGetIdentifier(broken.get()), nullptr);
}

TEST_F(BundleTest, NothingElseIsABundle) {
    write("file", "content");
    EXPECT_FALSE(openBundle(folder() / "missing"));
    EXPECT_FALSE(openBundle(folder() / "file"));
    EXPECT_EQ(CFBundleCreate(kCFAllocatorDefault, nullptr), nullptr);
    EXPECT_FALSE(openBundle(std::string(100000, 'x')));
}

TEST_F(BundleTest, ADirectoryHasOneBundle) {
    const auto bundle = open();
    EXPECT_EQ(open().get(), bundle.get());
    EXPECT_EQ(openBundle(folder().native() + "/").get(), bundle.get());
    const Held<CFURLRef> address(CFBundleCopyBundleURL(bundle.get()));
    EXPECT_EQ(pathOf(address), folder().native());
}

TEST_F(BundleTest, IsReadAnewAfterItsLastReference) {
    writeInfo("<key>CFBundleExecutable</key><string>First</string>");
    EXPECT_EQ(infoValue(open(), kCFBundleExecutableKey), u"First");
    writeInfo("<key>CFBundleExecutable</key><string>Second</string>");
    EXPECT_EQ(infoValue(open(), kCFBundleExecutableKey), u"Second");
}

TEST_F(BundleTest, IsFoundByItsIdentifierWhileItLives) {
    const auto identifier = string(u"org.rovescio.tests.identified");
    writeInfo("<key>CFBundleIdentifier</key><string>org.rovescio.tests.identified</string>");
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(identifier.get()), nullptr);
    {
        const auto bundle = open();
        EXPECT_EQ(CFBundleGetBundleWithIdentifier(identifier.get()), bundle.get());
        EXPECT_EQ(units(CFBundleGetIdentifier(bundle.get())), u"org.rovescio.tests.identified");
        EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.tests.IDENTIFIED")), nullptr);
        EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("")), nullptr);
        EXPECT_EQ(CFBundleGetBundleWithIdentifier(nullptr), nullptr);
    }
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(identifier.get()), nullptr);
}

TEST_F(BundleTest, ReadsInformationOfEveryFormat) {
    // A binary list with the one pair CFBundleExecutable = Bin.
    const std::string binary(
        "bplist00\xD1\x01\x02\x5F\x10\x12"
        "CFBundleExecutable\x53"
        "Bin\x08\x0B\x20\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\3\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x24",
        71);
    const struct {
        std::string content;
        std::u16string_view executable;
    } cases[] = {
        {xmlPropertyList("<key>CFBundleExecutable</key><string>X &amp; &#233;</string>"), u"X & \u00E9"},
        {binary, u"Bin"},
        {"{ CFBundleExecutable = Old; Other = (a, b); }", u"Old"},
        {xmlPropertyList("<key>CFBundleExecutable</key><string></string>"), u""},
        {xmlPropertyList("<key>CFBundleExecutable</key><integer>5</integer>"), u"<other>"},
        {xmlPropertyList("<key>CFBundleExecutable</key><array><string>a</string></array>"), u"<NULL>"},
        {xmlPropertyList("<key>Unrelated</key><string>a</string>"), u"<NULL>"},
        {"<?xml version=\"1.0\"?><plist><dict><key>CFBundleExecutable</key>", u"<NULL>"},
    };
    for (const auto& row : cases) {
        for (const char* place : {"Contents/Info.plist", "Info.plist"}) {
            fs::remove_all(folder() / "Contents");
            write(place, row.content);
            EXPECT_EQ(infoValue(open(), kCFBundleExecutableKey), row.executable) << place << row.content;
        }
    }
}

TEST_F(BundleTest, KeepsTheKindsOfValues) {
    writeInfo("<key>I</key><integer>-3</integer><key>R</key><real>2.5</real><key>B</key><true/>");
    const auto bundle = open();
    const auto value = [&](CFStringRef key) {
        return CFBundleGetValueForInfoDictionaryKey(bundle.get(), key);
    };
    int whole = 0;
    double real = 0;
    ASSERT_NE(value(CFSTR("I")), nullptr);
    EXPECT_TRUE(CFNumberGetValue(static_cast<CFNumberRef>(value(CFSTR("I"))), kCFNumberIntType, &whole));
    EXPECT_EQ(whole, -3);
    ASSERT_NE(value(CFSTR("R")), nullptr);
    EXPECT_TRUE(CFNumberGetValue(static_cast<CFNumberRef>(value(CFSTR("R"))), kCFNumberDoubleType, &real));
    EXPECT_EQ(real, 2.5);
    EXPECT_EQ(value(CFSTR("B")), kCFBooleanTrue);
}

TEST_F(BundleTest, PrefersLocalisedInformation) {
    writeInfo("<key>CFBundleName</key><string>plain</string><key>Other</key><string>kept</string>");
    write("Contents/Resources/en.lproj/InfoPlist.strings", "CFBundleName = \"localised\";");
    const auto bundle = open();
    EXPECT_EQ(infoValue(bundle, CFSTR("CFBundleName")), u"localised");
    EXPECT_EQ(infoValue(bundle, CFSTR("Other")), u"kept");
}

TEST_F(BundleTest, WithLoadedCodeIsPreferredAmongEqualIdentifiers) {
    const std::string info = xmlPropertyList(
        "<key>CFBundleIdentifier</key><string>org.rovescio.tests.twin</string>"
        "<key>CFBundleExecutable</key><string>Sample</string>");
    for (const char* name : {"first", "second"}) {
        write(fs::path(name) / "Contents/Info.plist", info);
        write(fs::path(name) / "Contents/MacOS/Sample", "");
    }
    fs::copy_file(SAMPLE_CODE, folder() / "second/Contents/MacOS/Sample",
                  fs::copy_options::overwrite_existing);
    const auto first = openBundle(folder() / "first");
    const auto second = openBundle(folder() / "second");
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.tests.twin")), first.get());
    ASSERT_TRUE(CFBundleLoadExecutable(second.get()));
    EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("org.rovescio.tests.twin")), second.get());
    CFBundleUnloadExecutable(second.get());
}

TEST(MainBundle, IsOneAndLoaded) {
    auto* const bundle = CFBundleGetMainBundle();
    ASSERT_NE(bundle, nullptr);
    EXPECT_EQ(CFBundleGetMainBundle(), bundle);
    EXPECT_TRUE(CFBundleIsExecutableLoaded(bundle));
    const Held<CFURLRef> executable(CFBundleCopyExecutableURL(bundle));
    EXPECT_TRUE(fs::is_regular_file(pathOf(executable)));
}

TEST(FileAddress, RefusesWhatIsNoPath) {
    EXPECT_FALSE(url(""));
    EXPECT_FALSE(url(std::string("a\0b", 3)));
}

TEST(FileAddress, IsEqualByPathAndKind) {
    const auto address = url("/some/where");
    EXPECT_TRUE(CFEqual(address.get(), url("/some/where/").get()));
    EXPECT_FALSE(CFEqual(address.get(), url("/some/where", false).get()));
    EXPECT_FALSE(CFEqual(address.get(), url("/some").get()));
    EXPECT_EQ(CFGetTypeID(address.get()), CFURLGetTypeID());
}

TEST(FileAddress, WritesItsPathWholeOrNotAtAll) {
    const auto address = url("/some/where/");
    UInt8 buffer[16] = "~~~~~~~~~~~~~~~";
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(address.get(), 1, buffer, 11));
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(address.get(), 1, buffer, 12));
    EXPECT_STREQ(reinterpret_cast<char*>(buffer), "/some/where");
    EXPECT_EQ(pathOf(url("relative")), (fs::current_path() / "relative").native());
}

}  // namespace
}  // namespace platform_tests
