#pragma once

#include "store/Settings.h"

// Every key of the settings files with its section and default. The namespace tells the file of a key; a key
// never moves between files.

// The settings file, shared by all users of the machine.
namespace SettingsKeys {

using Settings::BoolKey;
using Settings::IntKey;
using Settings::LevelKey;
using Settings::TextKey;

// Users. The items of the list are "user0", "user1", ..., each with a user number (default 0).
inline constexpr IntKey kCurrentUser{"settings", "currentuser", 0};  // the registry's value wins
inline constexpr char kUsersSection[] = "users";
inline constexpr IntKey kUserCount{kUsersSection, "count", 1};
inline constexpr char kUserPrefix[] = "user";

// Main window.
inline constexpr IntKey kWindowX{"settings", "windowx", 100};
inline constexpr IntKey kWindowY{"settings", "windowy", 100};
inline constexpr IntKey kViewMode{"settings", "viewmode", 1};  // 0 compact, 1 normal, 2 maximized
inline constexpr BoolKey kTopMost{"settings", "topmost", false};
inline constexpr IntKey kPlaySpeed{"settings", "playspeed", 1};  // 0 slow, 1 normal, 2 fast
inline constexpr TextKey kLoadFolder{"settings", "loadfolder", ""};

// Sound.
inline constexpr IntKey kSoundOutDevice{"settings", "soundoutdevice", 0};
inline constexpr LevelKey kSoundOutVolume{"settings", "soundoutvolume", 0};
inline constexpr LevelKey kRecordVolume{"settings", "recordvolume", 0};
inline constexpr LevelKey kVoiceActivate{"settings", "voiceactivate", -15};
inline constexpr IntKey kSoundIn{"settings", "soundin", 0};
inline constexpr IntKey kSoundInChan{"settings", "soundinchan", -2};  // kChooseLine of store/SoundInput.h
inline constexpr BoolKey kRecordTone{"settings", "recordtone", false};
inline constexpr BoolKey kStoppedTone{"settings", "stoppedtone", false};
inline constexpr BoolKey kStoppedToneRepeat{"settings", "stoppedtonerepeat", false};

// Portable recorder.
inline constexpr IntKey kDockSoundIn{"settings", "docksoundin", 0};
inline constexpr IntKey kDockSoundInChan{"settings", "docksoundinchan", -2};
inline constexpr IntKey kDockMethod{"settings", "dockmethod",
                                    -1};  // -1 not chosen, 0 record, 1 transfer files
inline constexpr LevelKey kDockRecordVolume{"settings", "dockrecordvolume", 0};
inline constexpr LevelKey kDockActivate{"settings", "dockactivate", -15};
inline constexpr BoolKey kDockHighSpeed{"settings", "dockhighspeed", false};
inline constexpr IntKey kDockHighSpeedPercent{"settings", "dockhighspeedpercent", 200};
inline constexpr TextKey kDockTransferFolder{"settings", "docktnffolder", ""};
inline constexpr BoolKey kDockTransferDelete{"settings", "docktnfdelete", true};
inline constexpr BoolKey kDockTransferNew{"settings", "docktnfnew", false};
inline constexpr IntKey kDockTransferDate{"settings", "docktnfdate", 0};
inline constexpr BoolKey kDockAutoSend{"settings", "dockautosend", false};

// Disk space.
inline constexpr IntKey kAutoDeleteDays{"settings", "autodeletedays", 30};  // 0: never
inline constexpr IntKey kWarnBelowMb{"settings", "warnbelowmb", 32};

// The two fields that the user is asked for when a dictation is made.
struct PromptKeys {
    BoolKey prompt;
    TextKey text;
    TextKey xmlTag;
    TextKey previous;
};
inline constexpr PromptKeys kPrompts[] = {
    {{"prompt1", "prompt", false},
     {"prompt1", "text", "Enter case or file no."},
     {"prompt1", "xmltag", "fileno"},
     {"prompt1", "previous", ""}},
    {{"prompt2", "prompt", false},
     {"prompt2", "text", "Enter client or patient name"},
     {"prompt2", "xmltag", "client"},
     {"prompt2", "previous", ""}},
};

// Pedals.
inline constexpr IntKey kControlPort{"control", "port", 0};
inline constexpr IntKey kControls[] = {{"control", "control1", 0},
                                       {"control", "control2", 0},
                                       {"control", "control3", 0},
                                       {"control", "control4", 0}};
// The user was told that the library of these pedals is missing.
inline constexpr BoolKey kNoLibraryTold{"control", "nolibrarytold", false};

// Hot keys: the items "key%d" (a virtual-key code), "key%dmod" (modifier bits) and "command%d" (CI_...).
inline constexpr char kKeysSection[] = "keys";
inline constexpr IntKey kKeyCount{kKeysSection, "keycount", 0};
inline constexpr char kKeyPrefix[] = "key";
inline constexpr char kKeyModSuffix[] = "mod";
inline constexpr char kKeyCommandPrefix[] = "command";

// Mail.
inline constexpr BoolKey kUseMapi{"email", "usemapi", true};
inline constexpr TextKey kMailHost{"email", "mailhost", ""};

}  // namespace SettingsKeys

// The user file, one for each dictating user.
namespace UserKeys {

using Settings::IntKey;
using Settings::TextKey;

inline constexpr IntKey kNumber{"settings", "number", 1};          // of the next dictation
inline constexpr IntKey kRecordMode{"settings", "recordmode", 0};  // 0 overwrite, 1 insert, 2 append
inline constexpr IntKey kSampleRate{"settings", "samplerate", 8000};
inline constexpr IntKey kSendCount{"settings", "sendcount", 0};
inline constexpr IntKey kSendDefault{"settings", "senddefault", 0};

inline constexpr char kUserSection[] = "user";
inline constexpr TextKey kName{kUserSection, "name", ""};
inline constexpr TextKey kEmail{kUserSection, "email", ""};
inline constexpr TextKey kCompany{kUserSection, "company", ""};
inline constexpr TextKey kPhone{kUserSection, "phone", ""};
inline constexpr TextKey kCell{kUserSection, "cell", ""};
inline constexpr TextKey kFax{kUserSection, "fax", ""};  // read when a dictation is sent; no page writes it
inline constexpr TextKey kAddress[] = {{kUserSection, "address1", ""},
                                       {kUserSection, "address2", ""},
                                       {kUserSection, "address3", ""},
                                       {kUserSection, "address4", ""}};

}  // namespace UserKeys

// The record file of a dictation.
namespace RecordKeys {

using Settings::IntKey;
using Settings::TextKey;

inline constexpr char kSection[] = "file";
inline constexpr IntKey kNumber{kSection, "number", 0};
inline constexpr TextKey kName{kSection, "name", ""};
inline constexpr char kDate[] = "date";  // seconds: Settings::ReadNumber
inline constexpr TextKey kPriority{kSection, "priority", "Normal"};
inline constexpr char kSendDate[] = "senddate";  // seconds
inline constexpr TextKey kRecipient{kSection, "recipient", ""};
inline constexpr TextKey kSendStatus{kSection, "sendstatus", ""};
// The texts of a dictation that came in a DCT file, in its order: the name, then the sender's.
inline constexpr const char* kLoadedTexts[] = {"name",     "sendername", "senderemail", "company",
                                               "phone",    "cell",       "fax",         "address1",
                                               "address2", "address3",   "address4"};

// Values of "sendstatus" that the program itself writes.
inline constexpr char kStatusSending[] = "Sending";
inline constexpr char kStatusSent[] = "Sent";
inline constexpr char kStatusFailed[] = "Send Failed";

}  // namespace RecordKeys
