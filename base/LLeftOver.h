#pragma once

// The names of files that stand beside other files: while one is written, as a lock, or left over when the
// program ended at a wrong moment. All names stand here, so that no two kinds collide. kProfile is appended
// to a name, the whole names of locks stand alone, and the others take the place of the extension. Recovery
// clears left-overs away (store/Recovery.cpp).
namespace LLeftOver {

inline constexpr char kProfile[] = "~";              // behind a settings file: the file with one more change
inline constexpr char kCopy[] = ".cv~";              // of a file that is being copied, in a typist's folder
inline constexpr char kQueue[] = ".new";             // of the send queue: the file that is to replace it
inline constexpr char kNotes[] = ".tx~";             // of notes that are being saved
inline constexpr char kRecipient[] = ".re~";         // of a recipient that is being saved
inline constexpr char kJournal[] = ".mo~";           // of the journal of a move that is being written
inline constexpr char kMove[] = "moving.txt";        // in a user's folder, the journal of a move to Sent
inline constexpr char kDeletion[] = "deleting.txt";  // in a user's folder, the journal of a deletion
inline constexpr char kImport[] = "Import";          // in a user's folder, the folder of what is being loaded
inline constexpr char kUntold[] = ".un~";            // of the errors of sending that wait to be told
inline constexpr char kLock[] = ".lck";              // of a lock between programs; stays
inline constexpr char kInUseLock[] = "inuse.lck";    // in a user's folder, while a program runs for that user
inline constexpr char kUsersLock[] = "users.lck";    // in the data folder, while the list of users is changed
inline constexpr char kKeysLock[] = "keys.lck";      // in the data folder, while the hot keys are changed
inline constexpr char kSendingLock[] = "sending.lck";  // in the data folder, while a program sends
inline constexpr char kAudio[] = ".tmp";               // of audio that is being rewritten or converted
inline constexpr char kInsert[] = ".ins";              // beside a dictation: of an insertion that is not done
inline constexpr char kInsertBeside[] = ".in~";        // of such a file that is being written
inline constexpr char kReport[] = "Temp.sta";  // in the data folder: a typist's report, fetched by FTP
inline constexpr char kSetAside[] = ".bad%d";  // of a file that does not hold what its name says
inline constexpr char kSetAsidePattern[] = ".bad*";

}  // namespace LLeftOver
