#pragma once

#include "ui/LIntroduction.h"

// The texts of the introduction, shown once, when the installer starts the program.
constexpr LIntroduction::Page kIntroductionPages[] = {
    {"Welcome",
     "Thank you for installing Corvane.\n\n"
     "Corvane records what you dictate, keeps it safe on this computer, and sends it to your typist in the "
     "background while you go on working.\n\n"
     "The next pages show the few things you need to know. Click Next to go on."},
    {"Recording",
     "Click New, or press Ctrl+N, to start a dictation. Click the red button, or press F5, and speak. Press "
     "Escape to stop.\n\n"
     "Recording begins with your first word and leaves long pauses out. Everything you say is on disk at "
     "once: even if the power fails, your dictation is kept."},
    {"Correcting",
     "Go to the place that you want to correct and record again. Record Overwrite replaces what follows; "
     "Record at End adds to the dictation.\n\n"
     "The window always shows where you are and how long the dictation is."},
    {"Notes and priorities",
     "Type notes for your typist under the list of dictations; they are saved by themselves.\n\n"
     "Use the File menu to give a dictation high, normal or low priority, to rename it, or to delete it."},
    {"Sending",
     "Press Ctrl+S to send the selected dictation to your default typist, or Ctrl+R to choose one.\n\n"
     "Sending goes on in the background; the bar at the bottom shows how far it is. Sent dictations are kept "
     "on this computer for some time.\n\n"
     "Click Finish to begin."},
};
