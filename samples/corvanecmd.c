/* Gives commands to a running Corvane, through its interface for other programs: window message 32767, with
   the number of a command as its first parameter and an argument as its second. Texts travel as global atoms.

     corvanecmd present           is Corvane running?
     corvanecmd open              brings its window to the front
     corvanecmd minimize          makes it an icon
     corvanecmd close             closes it
     corvanecmd new               makes a dictation and prints its number
     corvanecmd name "text"       renames the current dictation
     corvanecmd notes "text"      appends to its notes; \n in the text begins a new line
     corvanecmd status            prints stopped, recording, waiting, playing or winding
     corvanecmd number            prints the number of the current dictation, 0 when there is none
     corvanecmd send              sends it to the default recipient
     corvanecmd delete            deletes it, after the user has agreed

   A command returns when Corvane has carried it out. Where Corvane asks the user something, that is when he
   has answered. Exit codes: 0 done ("status": 0 to 4, in the order above), 100 Corvane does not run, 101 wrong
   use, 102 Corvane refused: a question was open, or it was busy.

   Any C compiler for Windows: i686-w64-mingw32-gcc -std=c89 -o corvanecmd.exe corvanecmd.c */

#include <windows.h>

#include <stdio.h>
#include <string.h>

#define WM_APICOMMAND 32767

#define CORVANE_PRESENT  0
#define CORVANE_OPEN     1
#define CORVANE_MINIMIZE 2
#define CORVANE_CLOSE    3
#define CORVANE_NEW      4
#define CORVANE_NAME     5
#define CORVANE_NOTES    6
#define CORVANE_STATUS   7
#define CORVANE_NUMBER   8
#define CORVANE_SEND     9
#define CORVANE_DELETE   10

#define EXIT_NOTRUNNING 100
#define EXIT_USAGE      101
#define EXIT_REFUSED    102

#define ATOM_BYTES      255    /* the longest text of an atom */
#define FIRST_TEXT_ATOM 0xC000 /* a text such as "#12" is no text but a number */

static HWND window;

static LRESULT ask(WPARAM command, LPARAM argument) {
    return SendMessageA(window, WM_APICOMMAND, command, argument);
}

/* Any other program's dialog can have this title, so the window is asked. */
static int find_corvane(void) {
    window = FindWindowA("#32770", "Corvane");
    return window != NULL && ask(CORVANE_PRESENT, 0) == 1;
}

static int ask_with_text(WPARAM command, const char* text) {
    ATOM atom = GlobalAddAtomA(text);
    if (atom < FIRST_TEXT_ATOM) {
        if (atom != 0) GlobalDeleteAtom(atom);
        fprintf(stderr, "corvanecmd: this text cannot be passed on\n");
        return EXIT_USAGE;
    }
    ask(command, atom);
    GlobalDeleteAtom(atom);
    return 0;
}

/* Whoever named a dictation that was not made would rename another one. */
static int make(void) {
    LRESULT before = ask(CORVANE_NUMBER, 0), number;
    ask(CORVANE_NEW, 0);
    number = ask(CORVANE_NUMBER, 0);
    if (number == before) return EXIT_REFUSED;
    printf("%ld\n", (long)number);
    return 0;
}

static int name(const char* text) {
    if (strlen(text) <= ATOM_BYTES) return ask_with_text(CORVANE_NAME, text);
    fprintf(stderr, "corvanecmd: a name has at most %d characters\n", ATOM_BYTES);
    return EXIT_USAGE;
}

/* In pieces that fit into an atom and end between two characters, which may have two bytes. */
static int append_notes(const char* text) {
    char piece[ATOM_BYTES + 1];
    size_t used = 0, bytes;
    int result = 0;
    while (*text != '\0' && result == 0) {
        if (text[0] == '\\' && text[1] == 'n') {
            memcpy(piece + used, "\r\n", 2);
            bytes = 2;
            text += 2;
        } else {
            bytes = IsDBCSLeadByte((BYTE)*text) && text[1] != '\0' ? 2 : 1;
            memcpy(piece + used, text, bytes);
            text += bytes;
        }
        used += bytes;
        if (*text == '\0' || used > ATOM_BYTES - 2) {
            piece[used] = '\0';
            result = ask_with_text(CORVANE_NOTES, piece);
            used = 0;
        }
    }
    return result;
}

static int status(void) {
    static const char* const words[] = {"stopped", "recording", "waiting", "playing", "winding"};
    LRESULT value = ask(CORVANE_STATUS, 0);
    if (value < 0 || value > 4) return EXIT_REFUSED;
    puts(words[value]);
    return (int)value;
}

static int usage(void) {
    fprintf(stderr,
            "usage: corvanecmd present | open | minimize | close | new | name \"text\" | notes \"text\" |\n"
            "                  status | number | send | delete\n");
    return EXIT_USAGE;
}

int main(int argc, char** argv) {
    static const struct {
        const char* word;
        WPARAM command;
    } plain[] = {{"open", CORVANE_OPEN}, {"minimize", CORVANE_MINIMIZE}, {"close", CORVANE_CLOSE},
                 {"send", CORVANE_SEND}, {"delete", CORVANE_DELETE},     {"present", CORVANE_PRESENT},
                 {"new", CORVANE_NEW},   {"status", CORVANE_STATUS},     {"number", CORVANE_NUMBER},
                 {"name", CORVANE_NAME}, {"notes", CORVANE_NOTES}};
    int i, count = (int)(sizeof plain / sizeof plain[0]), takes_text;

    for (i = 0; i < count && (argc < 2 || strcmp(argv[1], plain[i].word) != 0); ++i) continue;
    if (i == count) return usage();
    takes_text = plain[i].command == CORVANE_NAME || plain[i].command == CORVANE_NOTES;
    if (argc != (takes_text ? 3 : 2)) return usage();
    if (!find_corvane()) {
        fprintf(stderr, "corvanecmd: Corvane is not running\n");
        return EXIT_NOTRUNNING;
    }
    switch (plain[i].command) {
        case CORVANE_PRESENT:
            return 0;
        case CORVANE_NEW:
            return make();
        case CORVANE_NAME:
            return name(argv[2]);
        case CORVANE_NOTES:
            return append_notes(argv[2]);
        case CORVANE_STATUS:
            return status();
        case CORVANE_NUMBER:
            printf("%ld\n", (long)ask(CORVANE_NUMBER, 0));
            return 0;
        default:
            ask(plain[i].command, 0);
            return 0;
    }
}
