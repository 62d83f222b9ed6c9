#pragma once

// All public numbers of the program. The resource compiler reads this file too, so it holds macros alone.
// Prefixes keep the number spaces apart: CM_PRIORITY_HIGH and WM_SENDPROGRESS are both 1041.

// Menu commands
#define CM_NEWFILE              1001
#define CM_SENDFILE             1002
#define CM_SENDFILE_TO          1003
#define CM_RENAMEFILE           1004
#define CM_DELETEFILE           1005
#define CM_DOCK_CABLE           1011
#define CM_DOCK_TRANSFER        1012
#define CM_VIEWSENT             1021
#define CM_RECOVER              1022
#define CM_LOGON                1031
#define CM_PRIORITY_HIGH        1041
#define CM_PRIORITY_NORMAL      1042
#define CM_PRIORITY_LOW         1043
#define CM_LOADFILE             1051
#define CM_LOADSENDFILE         1052
#define CM_EXIT                 1099
#define CM_RECORD               2001
#define CM_PLAY                 2002
#define CM_STOP                 2003
#define CM_PLAY_SLOW            2011
#define CM_PLAY_NORMAL          2012
#define CM_PLAY_FAST            2013
#define CM_GOTOSTART            2021
#define CM_REWIND               2022
#define CM_FASTFORWARD          2023
#define CM_GOTOEND              2024
#define CM_RECORD_OVERWRITE     2031
#define CM_RECORD_INSERT        2032
#define CM_RECORD_END           2033
#define CM_RECORDMODE_OVERWRITE 2041
#define CM_RECORDMODE_INSERT    2042
#define CM_RECORDMODE_END       2043
#define CM_SETTINGS_HARDWARE    3001
#define CM_SETTINGS_RECIPIENTS  3002
#define CM_SETTINGS_USER        3003
#define CM_VIEW_COMPACT         6001
#define CM_VIEW_NORMAL          6002
#define CM_VIEW_MAXIMIZED       6003
#define CM_VIEW_FLOAT           6031
#define CM_HELP                 9001
#define CM_ABOUT                9002

// Controls of the main window
#define IDC_NEW           101
#define IDC_SEND          102
#define IDC_PLAY          201
#define IDC_RECORD        202
#define IDC_STOP          203
#define IDC_GOTOSTART     211
#define IDC_REWIND        212
#define IDC_FASTFORWARD   213
#define IDC_GOTOEND       214
#define IDC_DOCK          300
#define IDC_LIST          401
#define IDC_NOTES         402
#define IDC_INFOLINE      403
#define IDC_INFOLINK      404
#define IDC_SENDPROGRESS  405
#define IDC_LOGGEDON      406
#define IDC_DICTATIONNAME 407
#define IDC_POSITION      408
#define IDC_LEVEL_LEFT    409
#define IDC_LEVEL_RIGHT   410
#define IDC_SENDLABEL     411

#define IDC_LISTLABEL  640
#define IDC_NOTESLABEL 641

// Items of the information menu
#define CM_WEB_PRODUCT 650
#define CM_WEB_SUPPORT 651
#define CM_WEB_TYPIST  652

// Controls of the small dialogs; a decade for each
#define IDC_PROGRESS_STATUS   501
#define IDC_PROGRESS_BAR      502
#define IDC_CHOOSE_LIST       511
#define IDC_INTRO_TEXT        521
#define IDC_INTRO_TITLE       522
#define IDC_INTRO_BACK        523
#define IDC_INTRO_NEXT        524
#define IDC_INTRO_PAGE        525
#define IDC_ABOUT_TEXT        531
#define IDC_TEXTEDIT_QUESTION 541
#define IDC_TEXTEDIT_TEXT     542
#define IDC_KEYS_LIST         551
#define IDC_KEYS_ADD          552
#define IDC_KEYS_EDIT         553
#define IDC_KEYS_DELETE       554
#define IDC_KEYS_HEADING      555
#define IDC_HOTKEY_COMMAND    561
#define IDC_HOTKEY_KEY        562

// Controls of the dialogs on sent dictations (a number of a dialog is its own: 101 is also IDC_NEW)
#define IDC_RECOVER_LIST     101
#define IDC_SENTWORK_LIST    801
#define IDC_SENTWORK_SUMMARY 802
#define IDC_RECOVER_PLAY     811

// Log-on and the sheet "User Settings"; a decade or two for each dialog and page
#define IDC_LOGON_LIST          701
#define IDC_LOGON_ADD           702
#define IDC_LOGON_REMOVE        703
#define IDC_ADDUSER_NAME        711
#define IDC_ADDUSER_EMAIL       712
#define IDC_DETAILS_NAME        721
#define IDC_DETAILS_EMAIL       722
#define IDC_DETAILS_COMPANY     723
#define IDC_DETAILS_PHONE       724
#define IDC_DETAILS_CELL        725
#define IDC_DETAILS_ADDRESS1    726
#define IDC_DETAILS_ADDRESS2    727
#define IDC_DETAILS_ADDRESS3    728
#define IDC_DETAILS_ADDRESS4    729
#define IDC_RECORDING_DEVICE    731
#define IDC_RECORDING_LINE      732
#define IDC_RECORDING_VOLUME    733
#define IDC_RECORDING_RATE      734
#define IDC_RECORDING_TONE      735
#define IDC_RECORDING_START     736
#define IDC_RECORDING_METER     737
#define IDC_RECORDING_HEARD     738
#define IDC_RECORDING_VOLUMEUP  741
#define IDC_RECORDING_STARTUP   742
#define IDC_PLAYBACK_DEVICE     751
#define IDC_PLAYBACK_VOLUME     752
#define IDC_PLAYBACK_VOLUMEUP   753
#define IDC_PLAYBACK_TONE       754
#define IDC_PLAYBACK_TONEREPEAT 755
#define IDC_OPTIONS_DELETEDAYS  761
#define IDC_OPTIONS_WARNBELOW   762
#define IDC_OPTIONS_ASK1        763
#define IDC_OPTIONS_QUESTION1   764
#define IDC_OPTIONS_TAG1        765
#define IDC_OPTIONS_ASK2        766
#define IDC_OPTIONS_QUESTION2   767
#define IDC_OPTIONS_TAG2        768

// The sheet "Recipient Send Settings", and the editor of a recipient
#define IDC_RECIPIENTS_LIST       821
#define IDC_RECIPIENTS_ADD        822
#define IDC_RECIPIENTS_EDIT       823
#define IDC_RECIPIENTS_DELETE     824
#define IDC_RECIPIENTS_DEFAULT    825
#define IDC_RECIPIENT_NAME        831
#define IDC_RECIPIENT_BYEMAIL     832
#define IDC_RECIPIENT_BYFOLDER    833
#define IDC_RECIPIENT_BYFTP       834
#define IDC_RECIPIENT_ADDRESS     835
#define IDC_RECIPIENT_ADDRESSES   836
#define IDC_RECIPIENT_FOLDER      837
#define IDC_RECIPIENT_BROWSE      838
#define IDC_RECIPIENT_HOST        839
#define IDC_RECIPIENT_USER        840
#define IDC_RECIPIENT_PASSWORD    841
#define IDC_RECIPIENT_FTPFOLDER   842
#define IDC_RECIPIENT_DCT         843
#define IDC_RECIPIENT_WAVE        844
#define IDC_RECIPIENT_ENCRYPT     845
#define IDC_RECIPIENT_KEY         846
#define IDC_RECIPIENT_FORMAT      847
#define IDC_RECIPIENT_FORMATTEXT  848
#define IDC_RECIPIENT_MAKEDEFAULT 849
#define IDC_EMAIL_MAPI            861
#define IDC_EMAIL_SMTP            862
#define IDC_EMAIL_HOST            863
#define IDC_ADDRESSES_LIST        871

// The page of pedals and sound devices
#define IDC_HARDWARE_PORT     881
#define IDC_HARDWARE_CONTROL1 882
#define IDC_HARDWARE_CONTROL2 883
#define IDC_HARDWARE_CONTROL3 884
#define IDC_HARDWARE_CONTROL4 885
#define IDC_HARDWARE_TEST     886
#define IDC_HARDWARE_HINT     887
#define IDC_HARDWARE_INPUT    891
#define IDC_HARDWARE_LINE     892
#define IDC_HARDWARE_OUTPUT   893
#define IDC_HARDWARE_MIXER    894

// Recording from a portable recorder, and the transfer of its files
#define IDC_DOCK_STATUS         951
#define IDC_DOCK_LENGTH         952
#define IDC_DOCK_DEVICE         953
#define IDC_DOCK_LINE           954
#define IDC_DOCK_VOLUME         955
#define IDC_DOCK_VOLUMETEXT     956
#define IDC_DOCK_START          957
#define IDC_DOCK_STARTTEXT      958
#define IDC_DOCK_METER          959
#define IDC_DOCK_HIGHSPEED      960
#define IDC_DOCK_PERCENT        961
#define IDC_DOCK_AUTOSEND       962
#define IDC_DOCK_RESTART        963
#define IDC_DOCKTRANSFER_FOLDER 971
#define IDC_DOCKTRANSFER_BROWSE 972
#define IDC_DOCKTRANSFER_DELETE 973
#define IDC_DOCKTRANSFER_NEW    974
#define IDC_INSTALL_TEXT        981
#define IDC_INSTALL_FOLDER      982
#define IDC_INSTALL_BROWSE      983
#define IDC_INSTALL_SPACE       984
#define IDC_INSTALL_EVERYONE    985
#define IDC_INSTALL_ME          986
#define IDC_INSTALL_WHO         987
#define IDC_REMOVE_TEXT         991
#define IDC_REMOVE_DATA         992

// Timers of the main window
#define TIMER_INFOLINE    1
#define TIMER_SAVENOTES   2
#define TIMER_HARDWARE    3
#define TIMER_HOTKEY      4
#define TIMER_STOPPEDTONE 5
#define TIMER_SHOWLATER   6
#define TIMER_SENDSHOWN   7
#define TIMER_DEVICES     8

// The timer of each dialog on sent dictations
#define TIMER_REFRESH 1

// Messages into the main window
#define WM_SENDPROGRESS 1041
#define WM_DOCKREQUEST  1054
#define WM_MICBUTTON    1792
#define WM_APICOMMAND   32767

// Requests of WM_DOCKREQUEST
#define DOCK_SHOWBUTTON 0
#define DOCK_SEND       1
#define DOCK_ADD        2

// Messages that the main window sends itself
#define WM_SHOWLATER      0x8001
#define WM_ROWCHANGED     0x8002
#define WM_SELECTIONMOVED 0x8003
#define WM_HOLDBUTTON     0x8004
#define WM_INSERTKEPT     0x8005
#define WM_HELPNOTSHOWN   0x8010
#define WM_MICLOST        0x8012

// Message into the dialog on sent work: the typists' reports are collected
#define WM_STATUSCOLLECTED 0x8011

// Command indexes: the commands that pedals, hot keys and dictation microphones are mapped to
#define CI_NONE             0
#define CI_OPEN             1
#define CI_MINIMIZE         2
#define CI_RECORD           3
#define CI_PLAY             4
#define CI_GOTOSTART        5
#define CI_GOTOEND          6
#define CI_REWIND           7
#define CI_FASTFORWARD      8
#define CI_NEW              9
#define CI_SEND             10
#define CI_SENDHIGH         11
#define CI_RECORD_OVERWRITE 12
#define CI_RECORD_INSERT    13
#define CI_RECORD_END       14
#define CI_COUNT            15

// Resources
#define IDI_CORVANE       1
#define IDI_RECORDING     2
#define IDI_ROW_NEW       3
#define IDI_ROW_RECORDED  4
#define IDI_ROW_RECORDING 5
#define IDI_ROW_NOTES     6
#define IDI_ROW_HIGH      7
#define IDI_ROW_NOTESHIGH 8
#define IDD_MAIN          100
#define IDD_PROGRESS      101
#define IDD_CHOOSE        102
#define IDD_INTRO         103
#define IDD_SPLASH        104
#define IDD_ABOUT         105
#define IDD_TEXTEDIT      106
#define IDD_KEYSPAGE      107
#define IDD_HOTKEY        108
#define IDD_LOGON         110
#define IDD_ADDUSER       111
#define IDD_DETAILS       112
#define IDD_RECORDING     113
#define IDD_PLAYBACK      114
#define IDD_OPTIONS       115
#define IDD_SENTWORK      118
#define IDD_RECOVER       119
#define IDD_RECIPIENTS    120
#define IDD_RECIPIENT     121
#define IDD_EMAIL         122
#define IDD_ADDRESSES     123
#define IDD_HARDWARE      130
#define IDD_DOCK          150
#define IDD_DOCKTRANSFER  151
#define IDD_INSTALL       160
#define IDD_REMOVE        161
#define IDM_MAIN          200
#define IDM_DICTATION     201
#define IDM_INFO          202
#define IDW_RECORDTONE    300
#define IDW_STOPPEDTONE   301
