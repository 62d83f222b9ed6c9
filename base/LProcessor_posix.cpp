#include "base/LProcessor.h"

bool LPlatformSavesSse() {
    return true;
}
