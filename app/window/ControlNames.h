#pragma once

#include <span>

#include "res/Ids.h"
#include "res/Version.h"

// The tool tip of a control.
struct ControlTip {
    int control;
    const char* text;
};
constexpr ControlTip kControlTips[] = {
    {IDC_LIST, "List of current dictations"},
    {IDC_NEW, "Start a new dictation (Ctrl+N)"},
    {IDC_SEND, "Send dictation for transcription (Ctrl+S)"},
    {IDC_NOTES, "Notes about the current dictation"},
    {IDC_PLAY, "Play (F9)"},
    {IDC_RECORD, "Record (F5)"},
    {IDC_STOP, "Stop (Escape)"},
    {IDC_GOTOSTART, "Go to Start (Home)"},
    {IDC_REWIND, "Rewind (F7)"},
    {IDC_FASTFORWARD, "Fast Forward (F8)"},
    {IDC_GOTOEND, "Go to End (End)"},
    {IDC_DOCK, "Transfer dictation from Portable Recorder (Ctrl+D)"},
    {IDC_INFOLINE, "Click for more information"},
    {IDC_INFOLINK, "Click for more information"},
    {IDC_SENDPROGRESS, "Current send progress"},
};

// The texts of the information line, shown in turn.
constexpr const char* kInfoTexts[] = {
    "Corvane " CORVANE_VERSION ": record, correct and send dictations.",
    "Press F5 to record and Escape to stop; everything is on disk at once.",
    "Typed notes are saved by themselves and travel with the dictation.",
    "Quennet: the transcription program for your typist.",
};
