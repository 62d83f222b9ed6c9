#pragma once

#include <functional>

// Runs a function once, on a thread that nobody waits for and that may outlive its caller: it owns all that
// it uses. The end of the process ends it wherever it is.
// Errors: false (traced) when the platform makes no thread; the function is then not called.
bool LRunApart(std::function<void()> run);
