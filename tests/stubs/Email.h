#pragma once

#include <string>
#include <vector>

// The mail program of the native test build: what it was given, and whether it takes mails.
struct MailProgram {
    struct Mail {
        std::string address, subject, body, attachment;
    };
    static inline std::vector<Mail> mails;
    static inline bool takesMails = false;
};
