// The mirror-inversion dialog: a note pop-up, an octave field, and a button that listens to MIDI.
#include "transform/mirror_dialog.h"

#include <array>

#include "kit/dialogs.h"
#include "transform/pitch.h"

namespace {

constexpr short kMirrorDialog = 20140;

constexpr short kNotePopup = 3;
constexpr short kListen = 4;
constexpr short kOctaveField = 5;
constexpr short kSimplifyCheck = 6;

// The note pop-up lists each letter flat, natural and sharp, from C flat to B sharp.
constexpr short kNotePopupEntries = 21;

void initialise(SXWindow dialog, const MirrorAxis& axis) {
    SX_SetDlgItemVal(dialog, kSimplifyCheck, kCheckValue, axis.simplifySpelling);
    SX_SetDlgItemVal(dialog, kNotePopup, kPopupValue,
                     pitch::degreeInOctave(axis.axis) * 3 + 2 + axis.axisAlteration);
    // Below middle C the octave is one less, also for its C, which so comes out an octave too low.
    const int octave = axis.axis / 7 + axis.middleCOctave - (axis.axis < 0 ? 1 : 0);
    SX_SetDlgItemVal(dialog, kOctaveField, kNumberValue, octave);
}

void accept(SXWindow dialog, MirrorAxis& axis) {
    axis.simplifySpelling = kit::check(dialog, kSimplifyCheck);
    const short note = kit::popup(dialog, kNotePopup);
    if (note >= 1 && note <= kNotePopupEntries) {
        axis.axis = static_cast<std::int16_t>((note - 1) / 3);
        axis.axisAlteration = static_cast<std::int16_t>((note - 1) % 3 - 1);
    }
    const short octave = kit::number(dialog, kOctaveField);
    axis.axis = static_cast<std::int16_t>(axis.axis + (octave - axis.middleCOctave) * 7);
}

// Takes a note from the MIDI input; black keys are spelled as sharps.
void listen(SXWindow dialog, const MirrorAxis& axis) {
    static constexpr std::array<short, 12> kEntries = {2, 3, 5, 6, 8, 11, 12, 14, 15, 17, 18, 20};
    std::array<std::uint8_t, 64> event{};  // status, note, velocity; room for hosts that write more
    if (!SX_ListenToMidi(dialog, event.data()) || (event[0] & 0xF0) != 0x90) return;
    const int note = event[1];
    SX_SetDlgItemVal(dialog, kNotePopup, kPopupValue, kEntries[static_cast<std::size_t>(note % 12)]);
    SX_SetDlgItemVal(dialog, kOctaveField, kNumberValue, note / 12 + axis.middleCOctave - 5);
}

}  // namespace

int MirrorInversionDialogProc(SXWindow dialog, std::uint16_t message, short item, std::uint32_t /*parameter*/,
                              void* data) noexcept try {
    auto& axis = *static_cast<MirrorAxis*>(data);
    if (message == kDialogInit) {
        initialise(dialog, axis);
        return 1;
    }
    if (message != kDialogCommand) return 0;
    switch (item) {
        case kit::kOk:
            accept(dialog, axis);
            SX_EndDialog(dialog);
            return 1;
        case kit::kCancel:
            SX_EndDialog(dialog);
            return 1;
        case kListen:
            listen(dialog, axis);
            return 1;
        default:
            return 0;
    }
} catch (...) {
    return 0;
}

void editMirrorAxis(SXWindow parent, MirrorAxis& axis) {
    const short fourthC = SX_StringToMidiNote("C4");
    axis.middleCOctave = 4;
    if (fourthC == 72) axis.middleCOctave = 3;
    if (fourthC == 48) axis.middleCOctave = 5;
    kit::runSubDialog(kMirrorDialog, MirrorInversionDialogProc, parent, &axis);
}
