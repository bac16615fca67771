// Counts the parts, measures and time of a text, independently of the reader of scores.
#include "musicxml/reading/proofreading.h"

#include <algorithm>
#include <map>
#include <vector>

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/measure_time.h"

namespace rovescio::musicxml {

namespace {

constexpr Decimal kDefaultDivisions{1, 1};
// Measures of parts and parts of measures, with the root at 1.
constexpr std::size_t kMeasureDepth = 3;

}  // namespace

class Proofreader::Proof {
  public:
    Proof(const SourceMap& sources, const engine::Document& document)
        : sources_(sources), document_(document) {}

    // The root, or a child of it.
    void begin(const xml::Element& element) {
        if (!element.parent().exists()) {
            partwise_ = element.name() == tag("score-partwise");
        } else if (partwise_ && element.name() == tag("part")) {
            part_ = partOf(element);
            measure_ = 0;
        } else if (!partwise_ && element.name() == tag("measure")) {
            ++measure_;
        }
    }
    // A child of such a child.
    void read(const xml::Element& element) {
        const xml::Name around = element.parent().name();
        if (partwise_ && around == tag("part") && element.name() == tag("measure")) {
            readMeasure(part_, ++measure_, element);
        } else if (!partwise_ && around == tag("measure") && element.name() == tag("part")) {
            readMeasure(partOf(element), measure_, element);
        }
    }

    std::optional<std::string> finish(const xml::ParseFault& fault) {
        if (fault.kind != xml::ParseFault::Kind::none)
            return "its XML is not well-formed: " + fault.description;
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
        const auto [known, isNew] = numbers_.try_emplace(std::string(part.attribute("id")), seen_.size());
        if (isNew) seen_.emplace_back();
        return known->second;
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
    std::map<std::string, std::size_t> numbers_;  // of the parts, by id
    std::vector<Part> seen_;
    bool partwise_ = true;
    std::size_t part_ = 0;
    int measure_ = 0;
    std::optional<std::string> fault_;
};

Proofreader::Proofreader(const SourceMap& sources, const engine::Document& document)
    : proof_(std::make_unique<Proof>(sources, document)),
      reader_(
          kVocabulary, kMeasureDepth, [this](const xml::Element& element) { proof_->begin(element); },
          [this](const xml::Element& element) { proof_->read(element); }) {}

Proofreader::~Proofreader() = default;

std::optional<std::string> Proofreader::finish() {
    return proof_->finish(reader_.finish());
}

}  // namespace rovescio::musicxml
