// Judges the documents of the W3C's XML conformance suite: all of XML 1.0 in its fifth edition that need no
// external entities and are in UTF-8. The program's argument is the folder of the suite.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "xml/tree.h"

namespace rovescio::xml {
namespace {

struct Counts {
    int accepted = 0;
    int rejected = 0;
    int entities = 0;
    int otherEncoding = 0;
    int wrong = 0;
};

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::cerr << "cannot read " << path << '\n';
        std::exit(2);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

// UTF-16, or what declares another encoding than UTF-8.
bool hasOtherEncoding(std::string_view text) {
    if (text.starts_with("\xFE\xFF") || text.starts_with("\xFF\xFE") ||
        text.substr(0, 4).find('\0') != std::string_view::npos) {
        return true;
    }
    const std::string_view declaration = text.substr(0, text.find("?>"));
    const std::size_t encoding = declaration.find("encoding=");
    if (!text.starts_with("<?xml") || encoding == std::string_view::npos) return false;
    const std::string_view name = declaration.substr(encoding + 9).substr(0, 6);
    return name.find("UTF-8") != 1 && name.find("utf-8") != 1;
}

bool concernsUs(const Element& test) {
    const std::string_view edition = test.attribute("EDITION");
    const std::string_view recommendation = test.attribute("RECOMMENDATION");
    return test.attribute("ENTITIES") == "none" && test.attribute("TYPE") != "error" &&
           test.attribute("VERSION") != "1.1" &&
           (edition.empty() || edition.find('5') != std::string_view::npos) && recommendation != "XML1.1" &&
           !recommendation.starts_with("NS");
}

void judge(const Element& test, const std::filesystem::path& folder, Counts& counts) {
    const std::string text = contentOf(folder / test.attribute("URI"));
    if (hasOtherEncoding(text)) {
        ++counts.otherEncoding;
        return;
    }
    const Tree tree(text, {});
    const ParseFault& fault = tree.fault();
    const bool isWellFormed = test.attribute("TYPE") != "not-wf";
    if (fault.kind == ParseFault::Kind::entities) {
        // Such documents are refused without a look at the rest.
        ++counts.entities;
    } else if (tree.isSound() != isWellFormed) {
        std::cout << test.attribute("ID") << ": " << (tree.isSound() ? "accepted" : fault.description) << " ("
                  << test.attribute("URI") << " at " << fault.offset << ")\n";
        ++counts.wrong;
    } else {
        ++(isWellFormed ? counts.accepted : counts.rejected);
    }
}

void judgeAll(const Element& list, const std::filesystem::path& folder, Counts& counts) {
    for (const Element child : list) {
        if (child.nameText() == "TESTCASES") {
            judgeAll(child, folder / child.attribute("xml:base"), counts);
        } else if (child.nameText() == "TEST" && concernsUs(child)) {
            judge(child, folder, counts);
        }
    }
}

int run(const std::filesystem::path& suite) {
    const std::string list = contentOf(suite / "cleaned" / "xmlconf-flattened.xml");
    // Its document type declares entities that nothing refers to.
    const std::string_view cases = std::string_view(list).substr(list.find("<TESTSUITE"));
    const Tree tree(cases, {});
    Counts counts;
    if (tree.isSound()) judgeAll(tree.rootElement(), suite / "xmlconf", counts);
    std::cout << counts.accepted << " documents accepted and " << counts.rejected
              << " rejected as they should be, " << counts.wrong << " wrong; " << counts.entities
              << " declare entities, " << counts.otherEncoding << " are not in UTF-8\n";
    const bool isAll = counts.accepted + counts.rejected > 1000;
    if (!isAll) std::cout << "the suite is not complete\n";
    return counts.wrong == 0 && isAll ? 0 : 1;
}

}  // namespace
}  // namespace rovescio::xml

int main(int argc, char** argv) {
    return argc == 2 ? rovescio::xml::run(argv[1]) : 2;
}
