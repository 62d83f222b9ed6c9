#pragma once

// Whether the platform saves the SSE registers when it changes threads. Where it does not, one thread that
// uses them destroys the values of another, even on a processor that has them.
bool LPlatformSavesSse();
