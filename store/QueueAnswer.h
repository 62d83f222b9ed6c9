#pragma once

#include <functional>

#include "base/LPath.h"

// Whether a dictation waits in the send queue. While the queue's file cannot be opened nobody knows, and
// nothing is done that would be wrong in either case.
enum class QueueAnswer { No, Yes, Unknown };

// Asks with the path of the audio in Sent.
using AskQueue = std::function<QueueAnswer(const LPath& sentAudio)>;
