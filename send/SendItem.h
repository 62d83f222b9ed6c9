#pragma once

#include <cstdint>
#include <string>

#include "audio/stream/LSoundSink.h"
#include "base/LPath.h"
#include "base/LProcess.h"
#include "send/DctWriter.h"
#include "send/SendQueueFile.h"
#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "store/DictationRecord.h"
#include "store/QueueAnswer.h"
#include "store/SendToSettings.h"

// Sends one queued dictation: converts it into the file that its recipient wants, delivers it, and writes the
// result into its record.
// Units:  progress is in fractions of the item. The conversion takes it to 0.4, the DCT file to 0.5, the
//         delivery to 1.
// Errors: Failed always leaves an error text for the user. An incomplete entry, a recipient that cannot be
//         loaded and a failed delivery write "Send Failed" into the record; a failed conversion leaves the
//         record as it is, and so does Stopped. An entry whose recipient is not one of the same user's counts
//         as incomplete. One that names no dictation in its user's Sent folder is refused, and none of the
//         named files is touched.
// Thread: the send thread.
class SendItem {
public:
    // isQueued: for a delivery that collects a typist's report.
    SendItem(const SendQueueEntry& entry, const DataFolder& data, AskQueue isQueued, ProcessContext& context);

    // Converts, delivers and records the result. Stopped: nothing has arrived, and the entry is to be sent
    // again; with an error text when record, audio, notes, recipient or user file could not be read for a
    // second.
    ProcessResult Send();
    // Only converts: makes the recipient's file beside the dictation and returns its path in file. The file
    // exists only when the result is Done.
    ProcessResult Convert(LPath& file);

    // Names for messages to the user; empty when unknown.
    const std::string& DictationName() const { return m_label; }
    const std::string& TypistName() const;

private:
    ProcessResult RefuseDamaged();
    ProcessResult KeepForLater();
    bool LoadRecipient();
    ProcessResult MakeDct(const LPath& output);
    ProcessResult CompressWavFile(const LPath& output, const LWaveFileFormat& format);
    ProcessResult FailToOpen(const LPath& output, const LSoundSink& sink);
    ProcessResult CreateDCTFile(const LPath& output, const LPath& audio);
    DctHeader MakeDctHeader() const;
    int32_t Number() const;
    LPath OutputPath(const char* prefix, std::string_view extension) const;
    bool CanBeRead() const;
    bool IsDelivered() const;
    bool IsRecovered() const;
    bool WriteStatus(std::string_view status);
    void MarkAsSent();
    ProcessResult Fail(std::string_view reason);

    const SendQueueEntry& m_entry;
    const DataFolder& m_data;
    AskQueue m_isQueued;
    ProcessContext& m_context;
    bool m_isLoaded = false;  // m_recipient was loaded
    DictationFiles m_files;   // empty paths when the entry names no dictation of its user
    SendToSettings m_recipient;
    DictationRecord m_record;
    UserDetails m_sender;
    bool m_isMarked = false;     // as sent
    bool m_notesAreCut = false;  // the DCT file holds only the beginning of the notes
    std::string m_label;
};
