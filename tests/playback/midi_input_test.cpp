// Which MIDI port a name means.
#include "playback/midi_input.h"

#include <gtest/gtest.h>

namespace {

TEST(MidiInputTest, FindsThePortThatANameMeans) {
    using Names = std::vector<std::string>;
    const std::string loop = "Midi Through:Midi Through Port-0 14:0";
    const struct {
        Names names;
        const char* text;
        const char* meaning;  // a port, or the problem and its remedy
    } cases[] = {
        {{loop, "Keystation:Keystation MIDI 1 20:0"}, "", "Keystation:Keystation MIDI 1 20:0"},
        {{"Piano", "Piano 2"}, "piano", "Piano"},
        {{"Piano 1", "Organ"}, "ORG", "Organ"},
        {{loop, "Piano"}, "through", loop.c_str()},
        {{},
         "",
         "there is no MIDI port to listen to. Connect a MIDI instrument, or write the pitch, such as --axis "
         "E4"},
        {{loop},
         "",
         "there is no MIDI port to listen to. Connect a MIDI instrument, or write the pitch, such as --axis "
         "E4"},
        {{"Piano", "Organ"},
         "",
         "there are several MIDI ports. Say which with --midi-port: \"Piano\", \"Organ\""},
        {{"Piano 1", "Piano 2"},
         "pia",
         "several MIDI ports have \"pia\" in their names. Say which with --midi-port: \"Piano 1\", \"Piano "
         "2\""},
        {{"Piano"}, "Flute", "there is no MIDI port \"Flute\". There are: \"Piano\""},
    };
    for (const auto& c : cases) {
        const auto chosen = rovescio::playback::choosePort(c.names, c.text);
        EXPECT_EQ(chosen ? c.names.at(chosen.value()) : chosen.problem().text(), c.meaning) << c.text;
    }
}

}  // namespace
