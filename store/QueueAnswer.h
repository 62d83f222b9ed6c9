#pragma once

#include <functional>

#include "base/LPath.h"

// Whether a dictation waits in the send queue. Unknown: the queue file cannot be opened; the caller then does
// nothing that would be wrong for either answer.
enum class QueueAnswer { No, Yes, Unknown };

// The question, with the path of the audio file in Sent. A callback, because the queue belongs to send/,
// which is above store/.
using AskQueue = std::function<QueueAnswer(const LPath& sentAudio)>;
