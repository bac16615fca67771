// Children of a note by the place that the format gives them.
#include "musicxml/note_rewrite.h"

#include <algorithm>
#include <utility>

#include "contract/records.h"
#include "musicxml/note_types.h"
#include "musicxml/tag_names.h"
#include "musicxml/text_edits.h"
#include "musicxml/text_walk.h"

namespace rovescio::musicxml {

namespace {

// The order of a note's children.
enum Rank : int {
    kGrace,
    kCue,
    kChord,
    kPitch,
    kDuration,
    kTie,
    kInstrument,
    kEditorial,
    kVoice,
    kType,
    kDot,
    kAccidental,
    kTimeModification,
    kStem,
    kNotehead,
    kNoteheadText,
    kStaff,
    kBeam,
    kNotations,
    kLyric,
    kPlay,
    kListen,
};

Rank rankOf(std::uint64_t name) {
    switch (name) {
        case tag("grace"):
            return kGrace;
        case tag("cue"):
            return kCue;
        case tag("chord"):
            return kChord;
        case tag("pitch"):
        case tag("unpitched"):
        case tag("rest"):
            return kPitch;
        case tag("duration"):
            return kDuration;
        case tag("tie"):
            return kTie;
        case tag("instrument"):
            return kInstrument;
        case tag("footnote"):
        case tag("level"):
            return kEditorial;
        case tag("voice"):
            return kVoice;
        case tag("type"):
            return kType;
        case tag("dot"):
            return kDot;
        case tag("accidental"):
            return kAccidental;
        case tag("time-modification"):
            return kTimeModification;
        case tag("stem"):
            return kStem;
        case tag("notehead"):
            return kNotehead;
        case tag("notehead-text"):
            return kNoteheadText;
        case tag("staff"):
            return kStaff;
        case tag("beam"):
            return kBeam;
        case tag("notations"):
            return kNotations;
        case tag("lyric"):
            return kLyric;
        case tag("play"):
            return kPlay;
        default:
            return kListen;
    }
}

std::string_view sliceOf(std::string_view text, const Element& element) {
    return text.substr(element.begin, element.end - element.begin);
}

// An element without one of its attributes.
std::string without(std::string_view element, std::string_view attribute) {
    std::string text(element);
    const Attribute found = findAttribute(text, 0, attribute);
    if (found.exists()) text.erase(found.begin, found.end - found.begin);
    return text;
}

// The whitespace before a child of notations.
std::string innerIndentation(std::string_view outer) {
    return outer.empty() ? std::string() : std::string(outer) + "  ";
}

std::string tieText(std::string_view name, bool start) {
    return "<" + std::string(name) + " type=\"" + (start ? "start" : "stop") + "\"/>";
}

}  // namespace

void NoteRewriter::rewrite(std::string_view note, const NoteShape& shape, std::string& out) {
    note_ = note;
    shape_ = &shape;
    indentation_ = {};
    children_.clear();
    new_.clear();
    notations_.clear();
    notationsTag_.clear();

    TextWalk walk(note);
    walk.restart(0);
    walk.next(0);
    Element whole = walk.element();
    std::size_t reached = whole.contentBegin;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        if (reached == whole.contentBegin) {
            indentation_ = note.substr(reached, walk.element().begin - reached);
        }
        take(walk);
        reached = walk.reached();
    }
    walk.complete(whole);
    addNew();
    std::stable_sort(children_.begin(), children_.end(),
                     [](const Child& a, const Child& b) { return a.rank < b.rank; });

    out += note.substr(0, whole.begin);
    const std::string_view tag = note.substr(whole.begin, whole.contentBegin - whole.begin);
    if (tag.find("-x=") == std::string_view::npos) {
        out += tag;
    } else {
        out += without(without(tag, "default-x"), "relative-x");
    }
    for (const Child& child : children_) {
        out += indentation_;
        out += textOf(child);
    }
    out += note.substr(reached);
}

std::string_view NoteRewriter::textOf(const Child& child) const {
    return (child.isNew ? std::string_view(new_) : note_).substr(child.begin, child.length);
}

void NoteRewriter::keep(int rank, const Element& element) {
    children_.push_back({rank, false, element.begin, element.end - element.begin});
}

template <class... Parts>
void NoteRewriter::add(int rank, const Parts&... parts) {
    const std::size_t begin = new_.size();
    (new_ += ... += parts);
    children_.push_back({rank, true, begin, new_.size() - begin});
}

// Takes over the child that the walk is at, unless the shape says it anew.
void NoteRewriter::take(TextWalk& walk) {
    const Rank rank = rankOf(walk.tagNumber());
    const bool isRest = walk.tagNumber() == tag("rest");
    if (rank == kNotations) {
        takeNotations(walk);
        return;
    }
    if (rank == kLyric && shape_->mirrored && !shape_->continuation) {
        takeLyric(walk);
        return;
    }
    const Element element = walk.whole();
    switch (rank) {
        case kChord:
        case kDuration:
        case kTie:
        case kBeam:
            return;
        case kVoice:
            if (!shape_->voice.empty()) return;
            break;
        case kType:
        case kDot:
            if (shape_->value || shape_->measureRest) return;
            break;
        case kAccidental:
        case kLyric:
            if (shape_->continuation) return;
            break;
        default:
            break;
    }
    if (isRest) {
        takeRest(element);
    } else {
        keep(rank, element);
    }
}

void NoteRewriter::takeRest(const Element& element) {
    const std::string_view text = sliceOf(note_, element);
    const bool saysMeasure = findAttribute(text, 0, "measure").exists();
    if (saysMeasure == shape_->measureRest) {
        keep(kPitch, element);
    } else if (saysMeasure) {
        add(kPitch, without(text, "measure"));
    } else {
        constexpr std::string_view kTag = "<rest";
        add(kPitch, kTag, " measure=\"yes\"", text.substr(kTag.size()));
    }
}

// Takes over notations but ties and tuplet brackets; a continuation keeps none of them.
void NoteRewriter::takeNotations(TextWalk& walk) {
    const Element opening = walk.element();
    if (notationsTag_.empty()) notationsTag_ = sliceOf(note_, {opening.begin, 0, 0, opening.contentBegin});
    notations_.emplace_back();
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        const std::uint64_t name = walk.tagNumber();
        if (name == tag("ornaments") && shape_->mirrored && !shape_->continuation) {
            takeOrnaments(walk);
            continue;
        }
        const std::string_view type = walk.attribute("type");
        const bool isTie = name == tag("tied") && (type == "start" || type == "stop");
        const Element element = walk.whole();
        if (isTie || name == tag("tuplet") || shape_->continuation) continue;
        (notations_.back() += innerIndentation(indentation_)) += sliceOf(note_, element);
    }
    if (notations_.back().empty()) notations_.pop_back();
}

void NoteRewriter::takeOrnaments(TextWalk& walk) {
    Element ornaments = walk.element();
    std::string& text = notations_.back();
    text += innerIndentation(indentation_);
    std::size_t copied = ornaments.begin;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        const bool turns = walk.tagNumber() == tag("wavy-line") || walk.tagNumber() == tag("tremolo");
        const Element child = walk.whole();
        text += note_.substr(copied, child.begin - copied);
        text += turns ? turned(sliceOf(note_, child)) : std::string(sliceOf(note_, child));
        copied = child.end;
    }
    if (copied > ornaments.begin) walk.complete(ornaments);
    text += note_.substr(copied, ornaments.end - copied);
}

// A word's first syllable is now read as its last one. Syllables that share the note change places as well.
void NoteRewriter::takeLyric(TextWalk& walk) {
    Element lyric = walk.element();
    std::vector<Element> syllables;
    std::vector<Element> extensions;
    for (const std::size_t level = walk.enter(); walk.next(level);) {
        const std::uint64_t name = walk.tagNumber();
        const Element child = walk.whole();
        if (name == tag("syllabic")) syllables.push_back(child);
        if (name == tag("extend")) extensions.push_back(child);
    }
    walk.complete(lyric);
    TextEdits edits(note_);
    for (std::size_t i = 0; i < syllables.size(); ++i) {
        const Element& here = syllables[i];
        const Element& there = syllables[syllables.size() - 1 - i];
        const std::string_view value =
            note_.substr(there.contentBegin, there.contentEnd - there.contentBegin);
        edits.replace(here.contentBegin, here.contentEnd, std::string(mirroredPart(value)));
    }
    for (const Element& extension : extensions) {
        edits.replace(extension.begin, extension.end, turned(sliceOf(note_, extension)));
    }
    edits.settleAll();
    add(kLyric, edits.edited(lyric.begin, lyric.end));
}

void NoteRewriter::addNew() {
    if (shape_->chord) add(kChord, "<chord/>");
    if (!shape_->duration.empty()) add(kDuration, "<duration>", shape_->duration, "</duration>");
    if (!shape_->voice.empty()) add(kVoice, "<voice>", shape_->voice, "</voice>");
    if (shape_->value && !shape_->measureRest) {
        const std::string_view type = typeName(shape_->value->plain);
        if (!type.empty()) {
            add(kType, "<type>", type, "</type>");
            for (int dot = 0; dot < shape_->value->dots; ++dot) add(kDot, "<dot/>");
        }
    }
    // A tie that arrives is told before one that leaves.
    if (shape_->ties & NOTE_TIE_END) add(kTie, tieText("tie", false));
    if (shape_->ties & NOTE_TIE_START) add(kTie, tieText("tie", true));
    if (shape_->groups) {
        for (const BeamMark& beam : shape_->groups->beams) {
            if (beam.number.empty()) {
                add(kBeam, "<beam>", beam.value, "</beam>");
            } else {
                add(kBeam, "<beam number=\"", beam.number, "\">", beam.value, "</beam>");
            }
        }
    }
    addNotations();
}

void NoteRewriter::addNotations() {
    std::string added;
    const std::string inner = innerIndentation(indentation_);
    if (shape_->ties & NOTE_TIE_END) {
        const std::string id = shape_->cutId.empty() ? "" : "\" id=\"" + shape_->cutId;
        added += inner + "<tied type=\"stop" + id + "\"/>";
    }
    if (shape_->ties & NOTE_TIE_START) added += inner + tieText("tied", true);
    if (shape_->groups) {
        for (const TupletMark& tuplet : shape_->groups->tuplets) added += inner + tuplet.text;
    }
    if (!added.empty() && notations_.empty()) notations_.emplace_back();
    if (notationsTag_.empty() || notationsTag_.ends_with("/>")) notationsTag_ = "<notations>";
    for (std::size_t i = 0; i < notations_.size(); ++i) {
        add(kNotations, i == 0 ? std::string_view(notationsTag_) : "<notations>",
            i == 0 ? std::string_view(added) : "", notations_[i], indentation_, "</notations>");
    }
}

std::string restText(const NoteShape& shape, int staff) {
    std::string text = shape.measureRest ? "<note><rest measure=\"yes\"/>" : "<note><rest/>";
    text += "<duration>" + shape.duration + "</duration>";
    if (!shape.voice.empty()) text += "<voice>" + shape.voice + "</voice>";
    if (shape.value && !shape.measureRest) {
        text += "<type>" + std::string(typeName(shape.value->plain)) + "</type>";
        for (int dot = 0; dot < shape.value->dots; ++dot) text += "<dot/>";
    }
    if (staff > 0) text += "<staff>" + std::to_string(staff) + "</staff>";
    return text + "</note>";
}

}  // namespace rovescio::musicxml
