// Goes through the children of a measure.
#include "musicxml/writing/measure_contents.h"

#include "musicxml/file/tag_names.h"
#include "musicxml/reading/measure_time.h"

namespace rovescio::musicxml {

MeasureContents readContents(const xml::Edits& edits, xml::Node measure, const Decimal& divisions) {
    MeasureContents contents;
    MeasureTime time(divisions);
    std::vector<xml::Node> children;
    std::vector<xml::Node> inner;
    edits.children(measure, children);
    for (const xml::Node child : children) {
        const xml::Name name = edits.name(child);
        if (name == tag("backup") || name == tag("forward")) {
            edits.children(child, inner);
            if (inner.size() == 1)
                (name == tag("backup") ? contents.backups : contents.forwards).push_back(child);
        } else if (name != tag("note")) {
            contents.items.push_back({child, name, time.now()});
        }
        // What edits have added takes no time.
        if (child < edits.tree().size()) time.pass({edits.tree(), child});
    }
    return contents;
}

}  // namespace rovescio::musicxml
