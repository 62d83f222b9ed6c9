#pragma once

#include "base/LLibrary_win.h"
#include "hardware/PedalPort.h"

// Pedals that the vendor's add-on library "HidProbe.dll" reads. Once it has been started the library is never
// unloaded: it may have threads of its own.
class VECUSBPort final : public PedalPort {
public:
    ~VECUSBPort() override;
    Opened Open() override;
    std::optional<uint32_t> Read() override { return GetData(); }
    uint32_t GetData() const;
    void Close();

private:
    using Function = int (*)();

    bool FindFunctions();

    LLibrary m_library;
    Function m_startWatch = nullptr, m_stopWatch = nullptr, m_getData = nullptr;
    bool m_isStarted = false;
    bool m_isOwner = false;
};
