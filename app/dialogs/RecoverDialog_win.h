#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/transport/Playback_win.h"
#include "store/SentHistory.h"
#include "ui/LAnchors.h"
#include "ui/LDialog.h"

// Lists the sent dictations, plays one, and brings one back to the current dictations. It stays open, so that
// several can be recovered.
// Thread: the window thread.
class RecoverDialog final : public LDialog, private Playback::Owner {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        // Moves a dictation back. Returns a sentence for the user when it could not be, else an empty text.
        virtual std::string BringBack(const LPath& sentRecord) = 0;
        // Before a dictation is played: one at a time is heard.
        virtual void StopTransport() = 0;
    };

    // The settings file gives the output device and its volume. history: read already. All must outlive the
    // dialog.
    RecoverDialog(const LPath& settingsFile, SentHistory& history, Owner& owner)
        : m_history(history), m_owner(owner), m_playback(settingsFile, *this) {}

    // A pedal may stop the sound, or start the transport, while the dialog is open.
    bool IsPlaying() const { return m_playback.IsPlaying(); }
    void StopPlaying();

private:
    bool InitDialog() override;
    void DestroyDialog() override { m_playback.Stop(); }
    bool HandleMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    bool EvCommand(int control, int notification);
    void EvTimer();
    void SetupList();
    void ShowButtons();
    void CmPlay();
    void CmOk();
    bool IsHeldKey();
    void Tell(std::string_view text, std::string_view caption = "Error");
    const SentDictation* Selected() const;
    LRESULT ListMessage(UINT message, LRESULT item = 0, LPARAM parameter = 0) const;

    void PlaybackPosition(int32_t) override {}
    void PlaybackLevel(int8_t, int8_t) override {}
    void PlaybackEnded(Playback::Ending ending) override;

    SentHistory& m_history;
    Owner& m_owner;
    Playback m_playback;
    LAnchors m_anchors;
    // Times of messages: of the last recovery, and of the last time that it was asked for.
    std::optional<DWORD> m_recoveredMs;
    DWORD m_lastOkMs = 0;
    std::vector<SentDictation> m_shown;  // mirrors the rows of the list
};
