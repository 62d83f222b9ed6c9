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
     "Go to the place that you want to correct and record again: Record Overwrite (Ctrl+F5) replaces what "
     "follows, Record Insert (Ins) puts new words between, and Record at End (Shift+F5) adds to the "
     "dictation. Nothing is replaced before you speak.\n\n"
     "The window always shows where you are and how long the dictation is. Hold F7 to wind back."},
    {"Notes, names and other programs",
     "Type notes for your typist under the list of dictations; they are saved by themselves. F2 gives a "
     "dictation a name, the File menu a priority.\n\n"
     "In the Settings menu you choose hot keys, with which you dictate while you work in another program, "
     "and whether Corvane asks for a file number and a name. Several people can use Corvane: see Log On As "
     "Other User in the File menu."},
    {"Sending",
     "Press Ctrl+S to send the selected dictation to your default typist, or Ctrl+R to choose one. Sending "
     "goes on in the background.\n\n"
     "Sent dictations are kept on this computer for some time: Ctrl+W shows them, Ctrl+O brings one "
     "back.\n\n"
     "Press F1 at any time for the manual. Click Finish to begin."},
};
