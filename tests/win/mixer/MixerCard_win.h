#pragma once

#include <cstdint>

// A sound card with everything that a mixer may offer, in place of the platform's multimedia library. Wave-in
// device 1 and wave-out device 2 belong to its mixer, number 5:
//
//   Recording  volume, fader, mute, disabled, switch (on/off), pick (multiplexer), blend (mixer), treble
//              from CD, Microphone, Line In, Wave
//   Speakers   volume, mute, switch, blend;  from CD (fader, mute, switch, treble), Wave (volume, mute, switch)
//
// The mixer's first line of the kind "wave out" is a source of Recording.

// How it misbehaves, when it does.
struct CardFaults {
    int32_t failingCall = -1;  // the call of that number fails, counted from 0
    uint32_t connections = 0;  // counts that destinations claim, when not 0
    uint32_t controls = 0;
    uint32_t items = 0;              // of every control that has items
    bool hasEndlessNames = false;    // names that fill their field and have no end
    bool picksNothingKnown = false;  // the multiplexer's items belong to no line
};

struct MixerCard {
    CardFaults faults;
    int32_t calls;   // so far
    char log[2048];  // what was set, in order: "Recording.pick=0,1,0 "
};

// Exported by the library: clears calls and log, and takes the faults over.
constexpr char kResetMixerCardName[] = "ResetMixerCard";
using ResetMixerCardFunction = MixerCard*(const CardFaults& faults);
