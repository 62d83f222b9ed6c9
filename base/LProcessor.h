#pragma once

// Whether the platform saves the SSE registers when it changes threads. Where it does not, their use by one
// thread destroys what another one computes, whatever the processor can do.
bool LPlatformSavesSse();
