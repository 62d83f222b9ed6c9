#pragma once

#include <string_view>
#include <vector>

#include "app/AppState.h"
#include "app/transport/CurrentDictation.h"
#include "app/transport/Transport_win.h"
#include "app/window/DictationList_win.h"
#include "app/window/NotesBox_win.h"
#include "app/window/SendCommands_win.h"
#include "send/BGSend.h"
#include "ui/LModalRunner.h"

// What is done with whole dictations: making, renaming, prioritising, deleting and sending them. What runs is stopped
// and the notes are saved before anything happens to a dictation, and whatever had to be asked is asked before its
// rows are touched.
// Errors: told to the user, each once. Thread: the window thread.
class DictationCommands {
public:
    DictationCommands(const AppState& state, LModalRunner& runner, BGSend& queue, DictationList& list,
                      NotesBox& notes, Transport& transport, const CurrentDictation& current)
        : m_state(state),
          m_runner(runner),
          m_queue(queue),
          m_send(state, queue, runner),
          m_list(list),
          m_notes(notes),
          m_transport(transport),
          m_current(current) {}

    // A new dictation, which becomes the current one. False when there is none.
    bool Create();
    // Opens the editor of the current row.
    bool BeginRename();
    // Of the current dictation; blanks around the name do not count, and an empty name changes nothing.
    void Rename(std::string_view name);
    // "High", "Normal" or "Low" for every selected dictation.
    bool SetPriority(std::string_view priority);
    // Asks, and deletes every selected dictation, or the current one alone.
    bool DeleteSelected() { return Delete(m_list.Selected()); }
    bool DeleteCurrent() { return Delete(CurrentAlone()); }
    // To the default recipient, or to one that is chosen.
    enum class To { Default, Chosen };
    bool SendSelected(To to) { return Send(m_list.Selected(), to); }
    bool SendCurrent() { return Send(CurrentAlone(), To::Default); }

    // What went wrong with sending, once nothing runs and nothing stands.
    void ShowSendError();

    // Sent dictations that are older than the user wants.
    void DeleteOldFiles();
    // Warns when the disk is getting full, after old files have gone.
    void TestHardDrive();
    // A change of a record that could not be stored: said when whoever finds it out has finished.
    void TellNotStored() { m_runner.TellLater(kNotStored); }

private:
    static const char kNotStored[];

    std::vector<DictationFiles> CurrentAlone() const;
    bool Delete(const std::vector<DictationFiles>& dictations);
    bool Send(const std::vector<DictationFiles>& dictations, To to);
    bool StopAndSave();

    const AppState& m_state;
    LModalRunner& m_runner;
    BGSend& m_queue;
    SendCommands m_send;
    DictationList& m_list;
    NotesBox& m_notes;
    Transport& m_transport;
    const CurrentDictation& m_current;
};
