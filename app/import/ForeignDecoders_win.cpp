#include "app/import/ForeignDecoders_win.h"

#include <atomic>
#include <utility>

#include "app/import/ForeignLibraries_win.h"
#include "app/import/ForeignSource.h"
#include "base/LLibrary_win.h"
#include "base/LRegistry_win.h"
#include "base/LTrace.h"

namespace {

constexpr char kNoRealAudio[] =
    "Unable to load Real Audio Core DLL.\r\n\r\nThis software required that the Real Audio Player be "
    "installed on your computer to load these files. Please download and install an uptodate version of Real "
    "Player.";
constexpr char kRealAudioNotOpened[] =
    "Unable to open file with Real Player.\r\n\r\nThis might mean you do not have the codec "
    "installed.\r\n\r\n"
    "To resolve this, attempt to load the file using Real Player manually.";
constexpr char kNoVoiceIt[] =
    "Unable to load the VoiceIt file SrPump.dll.\r\n\r\nPlease download and install the add-on for VoiceIt "
    "files from the vendor's web site.";
constexpr char kNoDss[] =
    "Unable to load DSS file because the file dsscore.dll is missing.\r\n\r\nFor support please visit the "
    "vendor's web site.";
constexpr char kDssNotOpened[] =
    "Unable to open DSS file.\r\nThis means the file might not be a true DSS file or the file is corrupt.";
constexpr char kDssNotStarted[] = "Unable to start decoding DSS file.";
constexpr char kBusy[] =
    "The decoder for this kind of file has not finished with an earlier file.\n\nPlease try again later. If "
    "this goes on, close Corvane and start it again.";

constexpr char kRealAudioKey[] = "Software\\RealNetworks\\Preferences\\DT_Common";

// A library, and the right to call it. A call that was left behind may still be inside, and the libraries are
// not made for two at once.
class Library {
public:
    Library() = default;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() {
        m_module.Reset();
        if (m_busy != nullptr) *m_busy = false;
    }

    // False when another call is inside.
    bool Take(std::atomic<bool>& busy) {
        if (busy.exchange(true)) return false;
        m_busy = &busy;
        return true;
    }
    bool Load(LLibrary library, const char* name) {
        m_module = std::move(library);
        if (!m_module) LTrace("ForeignDecoders unable to load library", name);
        return static_cast<bool>(m_module);
    }
    template <class Function>
    bool Find(const char* name, Function& function) const {
        function = LFunctionOf<Function>(m_module, name);
        if (function == nullptr) LTrace("ForeignDecoders library lacks", name);
        return function != nullptr;
    }

private:
    LLibrary m_module;
    std::atomic<bool>* m_busy = nullptr;
};

std::atomic<bool> s_realAudioBusy{false};
std::atomic<bool> s_voiceItBusy{false};
std::atomic<bool> s_dssBusy{false};

class RealAudioPcm final : public ForeignPcm {
public:
    ~RealAudioPcm() override {
        if (m_engine != nullptr) m_close(m_engine);
    }
    bool Load(std::string& error) {
        error = kBusy;
        if (!m_library.Take(s_realAudioBusy)) return false;
        error = kNoRealAudio;
        // The player's set-up writes the first; others have been seen to write the others.
        for (const HKEY hive : {HKEY_CLASSES_ROOT, HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
            const std::string folder = LReadRegistryText(hive, kRealAudioKey, "");
            if (!folder.empty() &&
                m_library.Load(LLoadLibraryAt(LPath::Join(folder, "pnen3260.dll")), "pnen3260.dll"))
                return Create();
        }
        return false;
    }
    bool Open(const LPath& file, ForeignFormat& format, std::string& error) {
        error = kRealAudioNotOpened;
        const std::string url = "file:" + std::string(file.View());
        return m_engine->Open(url.c_str(), &format.sampleRate, &format.channels, &format.frames) == 0;
    }
    int32_t Read(int16_t* samples, int32_t frames) override { return m_engine->Read(samples, frames); }

private:
    bool Create() {
        CreateEngineFunction create = nullptr;
        if (!m_library.Find(kCreateEngine, create) || !m_library.Find(kCloseEngine, m_close)) return false;
        RealAudioEngine* engine = nullptr;
        if (create(&engine) != 0) return false;
        m_engine = engine;
        return m_engine != nullptr;
    }

    Library m_library;
    CloseEngineFunction m_close = nullptr;
    RealAudioEngine* m_engine = nullptr;
};

class DssPcm final : public ForeignPcm {
public:
    bool Load(std::string& error) {
        error = kBusy;
        if (!m_library.Take(s_dssBusy)) return false;
        error = kNoDss;
        return m_library.Load(LLoadAddOn("dsscore.dll"), "dsscore.dll") && m_library.Find(kDssInit, m_init) &&
               m_library.Find(kDssStart, m_start) && m_library.Find(kDssDecode, m_decode);
    }
    bool Open(const LPath& file, ForeignFormat& format, std::string& error) {
        error = kDssNotOpened;
        if (m_init(file.c_str(), &format.sampleRate, &format.channels, &format.frames) == 0) return false;
        error = kDssNotStarted;
        return m_start() != 0;
    }
    int32_t Read(int16_t* samples, int32_t frames) override { return m_decode(samples, frames); }

private:
    Library m_library;
    DssInitFunction m_init = nullptr;
    DssStartFunction m_start = nullptr;
    DssDecodeFunction m_decode = nullptr;
};

template <class Pcm>
LSoundSource Open(const LPath& file, std::string& error) {
    auto pcm = std::make_unique<Pcm>();
    ForeignFormat format;
    std::string failure;
    if (pcm->Load(failure) && pcm->Open(file, format, failure))
        return LSoundSource::Make<ForeignSource>(std::move(pcm), format);
    error = failure;
    return {};
}

class Decoders final : public ForeignDecoders {
public:
    LSoundSource OpenRealAudio(const LPath& file, std::string& error) override {
        return Open<RealAudioPcm>(file, error);
    }
    LSoundSource OpenDss(const LPath& file, std::string& error) override { return Open<DssPcm>(file, error); }

    bool ConvertVoiceIt(const LPath& file, const LPath& wave, std::string& error) override {
        Library library;
        error = kBusy;
        if (!library.Take(s_voiceItBusy)) return false;
        error = kNoVoiceIt;
        ConvertSriFunction convert = nullptr;
        if (!library.Load(LLoadAddOn("SrPump.dll"), "SrPump.dll") || !library.Find(kConvertSri, convert))
            return false;
        convert(file.c_str(), wave.c_str());
        return true;
    }
};

}  // namespace

std::unique_ptr<ForeignDecoders> MakeForeignDecoders() {
    return std::make_unique<Decoders>();
}
