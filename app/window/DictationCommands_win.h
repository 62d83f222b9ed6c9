#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/AppState.h"
#include "app/transport/CurrentDictation.h"
#include "app/transport/Transport_win.h"
#include "app/window/DictationList_win.h"
#include "app/window/InsertOffers_win.h"
#include "app/window/NotSentText.h"
#include "app/window/NotesBox_win.h"
#include "app/window/SendCommands_win.h"
#include "send/BGSend.h"
#include "store/DictationStore.h"
#include "ui/LModalRunner.h"

// Commands on whole dictations: create, rename, set the priority, delete and send. Before a dictation is
// touched its notes are saved and all questions to the user are asked; before one is sent or deleted, the
// transport is stopped.
// Errors: reported to the user, each once; false when nothing or not everything was done.
// Thread: the window thread.
class DictationCommands {
public:
    DictationCommands(const AppState& state, LModalRunner& runner, BGSend& queue, DictationList& list,
                      NotesBox& notes, Transport& transport, const CurrentDictation& current,
                      InsertOffers& inserts)
        : m_state(state),
          m_runner(runner),
          m_queue(queue),
          m_send(state, queue, runner),
          m_list(list),
          m_notes(notes),
          m_transport(transport),
          m_current(current),
          m_inserts(inserts) {}

    // Creates a dictation, which becomes the current one. False when there is none afterwards.
    bool Create();
    // Makes a dictation that is not listed yet; nothing after the user was told why.
    std::optional<NewDictation> Make(DictationName name = DefaultDictationName);
    // Opens the name editor of the current row.
    bool BeginRename();
    // Renames the current dictation. Blanks around the name are dropped; an empty name changes nothing.
    void Rename(std::string_view name);
    // Sets "High", "Normal" or "Low" for every selected dictation.
    bool SetPriority(std::string_view priority);
    // Deletes every selected dictation, or the current one, after a question.
    bool DeleteSelected() { return Delete(m_list.Selected()); }
    bool DeleteCurrent() { return Delete(CurrentAlone()); }
    // Sends to the default recipient, or to one that the user chooses.
    enum class To { Default, Chosen };
    bool SendSelected(To to) { return Send(m_list.Selected(), to); }
    bool SendCurrent() { return Send(CurrentAlone(), To::Default); }
    // The same for one that was just made of an audio file. False, after the user was told, when the next one
    // could not be sent either.
    bool SendLoaded(const DictationFiles& files);

    // Takes those out of the list whose records are gone, because another session on the same folder has sent
    // or deleted them, and tells the user. False when all are there, or may be. Called before a command acts
    // on a dictation: its absence must not look like an empty one, and a new file must not take its name.
    bool DropGone(std::vector<DictationFiles> dictations);

    // Shows the pending error of sending, unless the transport runs, the user's hand is at work or something
    // modal is open; then it stays pending.
    void ShowSendError();
    // The same before the user closes the window: the transport is stopped for it. False when the window is
    // gone.
    bool TellSendErrorAtClose();

    // Deletes sent dictations beyond the age in the settings.
    void DeleteOldFiles();
    // When the disk is nearly full, deletes old sent dictations and warns.
    void TestHardDrive();
    // Reports a change that could not be stored, after the current message.
    void TellNotStored();

private:
    bool FreeLowDisk();
    void AskAboutSendError();
    static const char kNotStored[];

    std::vector<DictationFiles> CurrentAlone() const;
    bool Delete(const std::vector<DictationFiles>& dictations);
    // nothingSends: why one was not sent concerns all.
    bool Send(const std::vector<DictationFiles>& dictations, To to, bool* nothingSends = nullptr);
    void AskFields(const DictationFiles& files);
    bool StopAndSave();
    void ForEach(const std::vector<DictationFiles>& dictations, std::string_view title,
                 const std::function<bool(const DictationFiles&)>& step);
    void SettleInserts(const std::vector<DictationFiles>& dictations, std::vector<DictationFiles>& ready,
                       std::vector<NotSent>& left);

    const AppState& m_state;
    LModalRunner& m_runner;
    BGSend& m_queue;
    SendCommands m_send;
    DictationList& m_list;
    NotesBox& m_notes;
    Transport& m_transport;
    const CurrentDictation& m_current;
    InsertOffers& m_inserts;
};
