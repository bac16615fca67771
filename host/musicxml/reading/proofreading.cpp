// Counts the parts, measures and time of a text, independently of the reader of scores.
#include "musicxml/reading/proofreading.h"

#include <algorithm>
#include <map>
#include <vector>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/measure_time.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

namespace {

constexpr Decimal kDefaultDivisions{1, 1};

class Proof {
  public:
    Proof(const SourceMap& sources, const engine::Document& document)
        : sources_(sources), document_(document) {}

    std::optional<std::string> of(const xml::Tree& tree) {
        if (!tree.isSound()) return "its XML is not well-formed: " + tree.fault().description;
        const bool partwise = tree.rootElement().name() == tag("score-partwise");
        for (const xml::Element child : tree.rootElement()) {
            if (partwise && child.name() == tag("part")) {
                readPart(child);
            } else if (!partwise && child.name() == tag("measure")) {
                ++measure_;
                for (const xml::Element contents : child) {
                    if (contents.name() == tag("part")) readMeasure(partOf(contents), measure_, contents);
                }
            }
        }
        if (!fault_ && seen_.size() != sources_.parts.size()) {
            fault_ = "it has " + std::to_string(seen_.size()) + " parts instead of " +
                     std::to_string(sources_.parts.size());
        }
        for (std::size_t part = 0; !fault_ && part < seen_.size(); ++part) checkCount(part);
        return fault_;
    }

  private:
    struct Part {
        int measures = 0;  // that are there
        Decimal divisions = kDefaultDivisions;
    };

    // Parts are numbered as they appear, as in the document.
    std::size_t partOf(const xml::Element& part) {
        const auto [known, isNew] = numbers_.try_emplace(part.attribute("id"), seen_.size());
        if (isNew) seen_.emplace_back();
        return known->second;
    }

    void readPart(const xml::Element& part) {
        const std::size_t number = partOf(part);
        int measure = 0;
        for (const xml::Element child : part) {
            if (child.name() == tag("measure")) readMeasure(number, ++measure, child);
        }
    }

    void readMeasure(std::size_t part, int number, const xml::Element& contents) {
        if (fault_ || part >= sources_.parts.size() || number > document_.measureCount()) return;
        MeasureTime time(seen_[part].divisions);
        for (const xml::Element child : contents) time.pass(child);
        seen_[part].divisions = time.divisions();
        ++seen_[part].measures;
        const PartSource& source = sources_.parts[part];
        const std::int32_t before = source.contents[static_cast<std::size_t>(number - 1)];
        const std::int32_t wanted =
            document_.staffMeasure(source.firstStaff, static_cast<short>(number)).duration;
        if (time.end() == before || time.end() == wanted) return;
        fault_ = "measure " + document_.measure(static_cast<short>(number)).label + " of part " +
                 std::to_string(part + 1) + " has a different length than before";
    }

    void checkCount(std::size_t part) {
        const std::vector<xml::Node>& measures = sources_.parts[part].measures;
        const auto wanted =
            measures.size() - static_cast<std::size_t>(std::ranges::count(measures, xml::Node{0}));
        if (static_cast<std::size_t>(seen_[part].measures) == wanted) return;
        fault_ = "part " + std::to_string(part + 1) + " has " + std::to_string(seen_[part].measures) +
                 " measures instead of " + std::to_string(wanted);
    }

    const SourceMap& sources_;
    const engine::Document& document_;
    std::map<std::string_view, std::size_t> numbers_;  // of the parts, by id
    std::vector<Part> seen_;
    int measure_ = 0;
    std::optional<std::string> fault_;
};

}  // namespace

std::optional<std::string> proofread(std::string_view text, const SourceMap& sources,
                                     const engine::Document& document) {
    const xml::Tree tree(text, kVocabulary);
    return Proof(sources, document).of(tree);
}

}  // namespace rovescio::musicxml
