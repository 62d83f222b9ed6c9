#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/CurrentUser.h"

// The users who can log on: a numbered list in the settings file, which all sessions of a data folder share.
// The current user is the one logged on here; he is offered even when another session has removed him.
// Errors: a list that cannot be read is neither changed nor taken for an empty one.
// Thread: the window thread.

// The users in the order of the list, each once; the current user alone when there is no list. Positions
// count from 0.
std::vector<uint32_t> ReadUserList(const LPath& settingsFile, uint32_t current = 0);

struct OfferedUser {
    uint32_t number;
    std::string name;  // as shown: with the number behind it where two users share a name
};
// The list with the names, and the current user at its end if it lacks him. Does not wait for held files.
std::vector<OfferedUser> OfferedUsers(const DataFolder& data, uint32_t current);

// Makes a user with the lowest number that neither the list nor a folder has, appends him to the list and
// stores him as the current user. Nothing, with everything as it was, when that cannot be stored or another
// session is changing the list.
std::optional<uint32_t> MakeUser(const DataFolder& data, std::string_view name, std::string_view email,
                                 uint32_t current);

enum class UserRemoval { Removed, IsLast, NotStored };
// Removes the user from the list; his folders and files stay. The caller has asked for confirmation. The last
// one stays. next: the user to be logged on then: the current one, or the first that remains if it was he.
UserRemoval RemoveUser(const DataFolder& data, uint32_t user, uint32_t current, uint32_t& next);
