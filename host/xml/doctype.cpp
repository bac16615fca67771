#include "xml/doctype.h"

#include <string>

namespace rovescio::xml {

namespace {

using Kind = ParseFault::Kind;

constexpr std::string_view kThing = "the document type declaration";
constexpr std::string_view kAttributeTypes[] = {"CDATA",  "IDREFS",   "IDREF",    "ID",
                                                "ENTITY", "ENTITIES", "NMTOKENS", "NMTOKEN"};

bool isPublicIdCharacter(char c) {
    constexpr std::string_view kOthers = " \r\n-'()+,./:=?;!*#@$_%";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           kOthers.find(c) != std::string_view::npos;
}

// Each function reads one production of the grammar; they return as those of Scanner do.
class DocumentType {
  public:
    explicit DocumentType(Scanner& scanner) : scanner_(scanner), end_(scanner.end()) {}

    const char* read(const char* p) {
        p = spacedName(p);
        if (p == nullptr) return nullptr;
        const char* q = skipSpace(p, end_);
        if (startsExternalId(q)) {
            if (q == p) return space(p);
            p = externalId(q, false);
            if (p == nullptr) return nullptr;
            q = skipSpace(p, end_);
        }
        if (q != end_ && *q == '[') {
            q = internalSubset(q + 1);
            if (q == nullptr) return nullptr;
            q = skipSpace(q, end_);
        }
        return expect(q, ">");
    }

  private:
    const char* space(const char* p) { return scanner_.space(p, kThing); }
    const char* name(const char* p) { return scanner_.name(p, kThing); }
    const char* expect(const char* p, std::string_view literal) {
        return scanner_.expect(p, literal, kThing);
    }
    [[nodiscard]] bool startsExternalId(const char* p) const {
        return scanner_.startsWith(p, "SYSTEM") || scanner_.startsWith(p, "PUBLIC");
    }

    const char* spacedName(const char* p) {
        p = space(p);
        return p == nullptr ? nullptr : name(p);
    }

    const char* quoted(const char* p, bool isPublicId) {
        if (p == end_) return scanner_.truncated(kThing);
        const char quote = *p;
        if (quote != '"' && quote != '\'') {
            return scanner_.malformed(p, "a quote is missing in " + std::string(kThing));
        }
        for (const char* q = p + 1; q != end_; ++q) {
            if (*q == quote) return q + 1;
            if (isPublicId && !isPublicIdCharacter(*q)) {
                return scanner_.malformed(q, "a public identifier contains an illegal character");
            }
        }
        return scanner_.truncated(kThing);
    }

    // Notations need no system identifier after the public one.
    const char* externalId(const char* p, bool ofNotation) {
        const bool isPublic = scanner_.startsWith(p, "PUBLIC");
        p = space(p + 6);
        if (p != nullptr) p = quoted(p, isPublic);
        if (p == nullptr || !isPublic) return p;
        const char* const q = skipSpace(p, end_);
        if (ofNotation && q != end_ && *q != '"' && *q != '\'') return p;
        p = space(p);
        return p == nullptr ? nullptr : quoted(p, false);
    }

    // Starts after the '['.
    const char* internalSubset(const char* p) {
        for (;;) {
            p = scanner_.miscellany(p);
            if (p == nullptr) return nullptr;
            if (p == end_) return scanner_.truncated(kThing);
            if (*p == ']') return p + 1;
            if (*p == '%') {
                p = name(p + 1);
                if (p != nullptr) p = expect(p, ";");
            } else {
                p = declaration(p);
            }
        }
    }

    const char* declaration(const char* p) {
        if (scanner_.startsWith(p, "<!ELEMENT")) return elementDeclaration(p + 9);
        if (scanner_.startsWith(p, "<!ATTLIST")) return attributeList(p + 9);
        if (scanner_.startsWith(p, "<!NOTATION")) return notation(p + 10);
        if (scanner_.startsWith(p, "<!ENTITY")) {
            return scanner_.fail(Kind::entities, p, "the document type declares entities");
        }
        return scanner_.malformed(p, std::string(kThing) + " contains something that is not a declaration");
    }

    const char* closed(const char* p) { return p == nullptr ? nullptr : expect(skipSpace(p, end_), ">"); }

    const char* notation(const char* p) {
        p = spacedName(p);
        if (p != nullptr) p = space(p);
        if (p == nullptr) return nullptr;
        if (!startsExternalId(p)) return expect(p, "SYSTEM");
        return closed(externalId(p, true));
    }

    const char* elementDeclaration(const char* p) {
        p = spacedName(p);
        if (p != nullptr) p = space(p);
        if (p == nullptr) return nullptr;
        if (scanner_.startsWith(p, "EMPTY")) return closed(p + 5);
        if (scanner_.startsWith(p, "ANY")) return closed(p + 3);
        p = expect(p, "(");
        if (p == nullptr) return nullptr;
        const char* const q = skipSpace(p, end_);
        return closed(scanner_.startsWith(q, "#PCDATA") ? mixed(q + 7) : children(p));
    }

    // Starts after "#PCDATA".
    const char* mixed(const char* p) {
        bool hasNames = false;
        for (p = skipSpace(p, end_); p != end_ && *p == '|'; p = skipSpace(p, end_)) {
            p = name(skipSpace(p + 1, end_));
            if (p == nullptr) return nullptr;
            hasNames = true;
        }
        p = expect(p, ")");
        if (p == nullptr) return nullptr;
        if (hasNames) return expect(p, "*");
        return p != end_ && *p == '*' ? p + 1 : p;
    }

    // Starts after the first '('. The groups that are open are kept as their separators, a space for one not
    // seen yet.
    const char* children(const char* p) {
        std::string open(1, ' ');
        while (!open.empty()) {
            p = skipSpace(p, end_);
            if (p != end_ && *p == '(') {
                open += ' ';
                ++p;
                continue;
            }
            p = name(p);
            if (p == nullptr) return nullptr;
            p = behindParticle(skipOccurrence(p), open);
            if (p == nullptr) return nullptr;
        }
        return p;
    }

    [[nodiscard]] const char* skipOccurrence(const char* p) const {
        return p != end_ && (*p == '?' || *p == '*' || *p == '+') ? p + 1 : p;
    }

    // Closes groups up to the next separator.
    const char* behindParticle(const char* p, std::string& open) {
        while (!open.empty()) {
            p = skipSpace(p, end_);
            if (p == end_) return scanner_.truncated(kThing);
            if (*p == ')') {
                open.pop_back();
                p = skipOccurrence(p + 1);
                continue;
            }
            const bool fits = open.back() == ' ' ? *p == '|' || *p == ',' : *p == open.back();
            if (!fits) return scanner_.malformed(p, "the content of an element is declared wrongly");
            open.back() = *p;
            return p + 1;
        }
        return p;
    }

    const char* attributeList(const char* p) {
        p = spacedName(p);
        while (p != nullptr) {
            const char* const q = skipSpace(p, end_);
            if (q != end_ && *q == '>') return q + 1;
            p = spacedName(p);
            if (p != nullptr) p = space(p);
            if (p != nullptr) p = attributeType(p);
            if (p != nullptr) p = space(p);
            if (p != nullptr) p = attributeDefault(p);
        }
        return nullptr;
    }

    const char* attributeType(const char* p) {
        if (scanner_.startsWith(p, "NOTATION")) {
            p = space(p + 8);
            if (p != nullptr) p = expect(p, "(");
            return p == nullptr ? nullptr : alternatives(p, true);
        }
        if (p != end_ && *p == '(') return alternatives(p + 1, false);
        const std::string_view word(p, static_cast<std::size_t>(nameEnd(p, end_) - p));
        for (const std::string_view type : kAttributeTypes) {
            if (word == type) return p + type.size();
        }
        return scanner_.malformed(p, "an attribute is declared with an unknown type");
    }

    // Starts after the '('.
    const char* alternatives(const char* p, bool ofNames) {
        for (;;) {
            p = skipSpace(p, end_);
            const char* const q = ofNames ? nameEnd(p, end_) : tokenEnd(p, end_);
            if (q == p && q != end_) {
                return scanner_.malformed(p, "a name is missing in " + std::string(kThing));
            }
            p = skipSpace(q, end_);
            if (p == end_ || *p != '|') return expect(p, ")");
            ++p;
        }
    }

    const char* attributeDefault(const char* p) {
        if (scanner_.startsWith(p, "#REQUIRED")) return p + 9;
        if (scanner_.startsWith(p, "#IMPLIED")) return p + 8;
        if (scanner_.startsWith(p, "#FIXED")) p = space(p + 6);
        if (p == nullptr) return nullptr;
        if (p == end_) return scanner_.truncated(kThing);
        if (*p == '"' || *p == '\'') return scanner_.attributeValue(p);
        return scanner_.malformed(p, "the default value of an attribute is declared wrongly");
    }

    Scanner& scanner_;
    const char* end_;
};

}  // namespace

const char* readDocumentType(Scanner& scanner, const char* p) {
    p = DocumentType(scanner).read(p);
    if (p != nullptr || scanner.fault().kind != Kind::malformed) return p;
    // The word that is wrong may be the beginning of a right one.
    const std::string_view rest(scanner.begin() + scanner.fault().offset, scanner.end());
    const bool isCut = rest.find_first_of(" \t\r\n\"'()[]<>|,;%", 1) == std::string_view::npos;
    return isCut ? scanner.truncated(kThing) : nullptr;
}

}  // namespace rovescio::xml
