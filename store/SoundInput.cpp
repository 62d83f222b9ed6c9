#include "store/SoundInput.h"

#include "base/LText.h"
#include "store/SettingsKeys.h"

static SoundInput Resolve(SoundInput input, std::string_view word, InputLines& lines) {
    if (input.line != kChooseLine) return input;
    input.line = -1;
    const std::vector<std::string> names = lines.LineNames(input.device);
    for (size_t i = 0; i < names.size(); ++i) {
        if (LUpper(names[i]).find(word) != std::string::npos) input.line = static_cast<int32_t>(i);
    }
    return input;
}

SoundInput ResolveSoundIn(SoundInput chosen, InputLines& lines) {
    return Resolve(chosen, "MIC", lines);
}

SoundInput GetSoundIn(const LPath& settingsFile, InputLines& lines) {
    return ResolveSoundIn({Settings::Read(settingsFile, SettingsKeys::kSoundIn),
                           Settings::Read(settingsFile, SettingsKeys::kSoundInChan)},
                          lines);
}

SoundInput ResolveDockSoundIn(SoundInput chosen, InputLines& lines) {
    return Resolve(chosen, "LINE", lines);
}

SoundInput GetDockSoundIn(const LPath& settingsFile, InputLines& lines) {
    return ResolveDockSoundIn({Settings::Read(settingsFile, SettingsKeys::kDockSoundIn),
                               Settings::Read(settingsFile, SettingsKeys::kDockSoundInChan)},
                              lines);
}
