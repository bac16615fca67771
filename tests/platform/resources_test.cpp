// Resource files: names, types, folders, languages without a preference, and names that try to get out.
#include "support.h"

namespace platform_tests {
namespace {

class ResourceTest : public BundleTest {
  protected:
    /// The path below the resources, or "<NULL>".
    [[nodiscard]] std::string find(CFStringRef name, CFStringRef type,
                                   CFStringRef directory = nullptr) const {
        const auto bundle = open();
        const std::string path =
            pathOf(Held<CFURLRef>(CFBundleCopyResourceURL(bundle.get(), name, type, directory)));
        const std::string start = (folder() / "Contents/Resources/").native();
        return path.compare(0, start.size(), start) == 0 ? path.substr(start.size()) : path;
    }

    void writeResource(const std::string& name, std::string_view content = "x") const {
        write("Contents/Resources/" + name, content);
    }
};

TEST_F(ResourceTest, IsFoundByNameAndType) {
    writeResource("data.txt");
    EXPECT_EQ(find(CFSTR("data"), CFSTR("txt")), "data.txt");
    EXPECT_EQ(find(CFSTR("data.txt"), nullptr), "data.txt");
    EXPECT_EQ(find(CFSTR("data"), CFSTR(".txt")), "data.txt");
    EXPECT_EQ(find(CFSTR("Data"), CFSTR("txt")), "<NULL>");
    EXPECT_EQ(find(CFSTR("data"), CFSTR("bin")), "<NULL>");
    EXPECT_EQ(find(CFSTR("data"), nullptr), "<NULL>");
    EXPECT_EQ(find(nullptr, CFSTR("txt")), "<NULL>");
    EXPECT_EQ(find(CFSTR(""), nullptr), "<NULL>");
}

TEST_F(ResourceTest, IsFoundInFoldersAndLanguages) {
    writeResource("dialogs/main.txt");
    writeResource("en.lproj/only.txt");
    writeResource("en.lproj/dialogs/pitch.txt");
    EXPECT_EQ(find(CFSTR("main"), CFSTR("txt"), CFSTR("dialogs")), "dialogs/main.txt");
    EXPECT_EQ(find(CFSTR("main"), CFSTR("txt")), "<NULL>");
    EXPECT_EQ(find(CFSTR("only"), CFSTR("txt")), "en.lproj/only.txt");
    EXPECT_EQ(find(CFSTR("pitch"), CFSTR("txt"), CFSTR("dialogs")), "en.lproj/dialogs/pitch.txt");
}

TEST_F(ResourceTest, CannotLieOutsideTheResources) {
    writeResource("en.lproj/inside.txt");
    write("Contents/outside.txt", "x");
    EXPECT_EQ(find(CFSTR("../outside"), CFSTR("txt")), "<NULL>");
    EXPECT_EQ(find(CFSTR("outside"), CFSTR("txt"), CFSTR("..")), "<NULL>");
    EXPECT_EQ(find(string((folder() / "Contents/outside").u16string()).get(), CFSTR("txt")), "<NULL>");
    EXPECT_EQ(find(string({u"data\0", 5}).get(), CFSTR("txt")), "<NULL>");
}

TEST_F(ResourceTest, WithoutAPreferenceComesFromTheDevelopmentRegion) {
    writeResource("fr.lproj/Localizable.strings", "k = french;");
    EXPECT_EQ(localized(u"k"), u"<miss>");
    writeInfo("<key>CFBundleDevelopmentRegion</key><string>fr</string>");
    EXPECT_EQ(localized(u"k"), u"french");
    writeInfo("");
    writeResource("Base.lproj/Localizable.strings", "k = base;");
    EXPECT_EQ(localized(u"k"), u"base");
    writeResource("English.lproj/Localizable.strings", "k = english;");
    EXPECT_EQ(localized(u"k"), u"english");
}

}  // namespace
}  // namespace platform_tests
