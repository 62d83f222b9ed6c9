// playtool.exe: plays through our player what it is told. It reads commands from its input, one per line, words
// divided by blanks, and writes lines of JSON: an object with "answer" for each command, and one with "event"
// for each notification, with the platform's tick count in "ms".

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

#include "audio/convert/WindSource.h"
#include "audio/device/LSoundPlayer_win.h"
#include "audio/device/LSoundRecorder_win.h"
#include "audio/wave/LWaveFile.h"
#include "base/LTime.h"
#include "base/LTrace.h"
#include "tests/system/Json.h"

namespace {

using Words = std::vector<std::string>;

int32_t Number(const Words& words, size_t i) {
    return i < words.size() ? static_cast<int32_t>(std::strtol(words[i].c_str(), nullptr, 0)) : 0;
}

double Real(const Words& words, size_t i) {
    return i < words.size() ? std::strtod(words[i].c_str(), nullptr) : 0.0;
}

void PrintLine(Json& json) {
    std::printf("%s\n", json.Close('}').Text().c_str());
    std::fflush(stdout);
}

Json Begin(std::string_view kind, std::string_view name) {
    Json json;
    json.Open('{').Member(kind, name).Member("ms", LTickMs());
    return json;
}

// Reads the input on a thread of its own, since the main one must dispatch messages.
class Input final : public LThread {
public:
    ~Input() override { Stop(); }
    LSignalObject& Arrived() { return m_arrived; }
    // False when there is no line at present.
    bool Take(std::string& line) {
        LLock lock(m_section);
        if (m_lines.empty()) {
            m_arrived.Reset();
            return false;
        }
        line = std::move(m_lines.front());
        m_lines.pop_front();
        return true;
    }

private:
    void ThreadFunction() override {
        char line[1024];
        while (std::fgets(line, sizeof line, stdin)) Put(line);
        Put("quit");
    }
    void Put(std::string line) {
        LLock lock(m_section);
        m_lines.push_back(std::move(line));
        m_arrived.Signal();
    }

    LCriticalSection m_section;
    std::deque<std::string> m_lines;
    LSignalObject m_arrived;
};

class Tool final : public LSoundPlayerNotify {
public:
    // False for "quit".
    bool Obey(const Words& words);

private:
    struct Command {
        const char* name;
        bool (Tool::*run)(const Words& words, Json& answer);
    };
    static const Command kCommands[];

    void OnPlayPosition(int32_t frames) override {
        Json json = Begin("event", "position");
        PrintLine(json.Member("frames", frames).Member("length", m_source->GetLength()));
    }
    void OnPlayLevel() override {
        Json json = Begin("event", "level");
        PrintLine(json.Member("db", m_player.LevelDb(0)));
    }
    void OnPlayStopped() override {
        Json json = Begin("event", "stopped");
        PrintLine(json.Member("ending", static_cast<int>(m_player.GetEnding())));
    }

    bool Device(const Words& words, Json&) {
        m_player.SetDevice(Number(words, 1));
        return true;
    }
    bool Open(const Words& words, Json& answer) {
        if (words.size() < 2) return false;
        m_source = LWaveFile::OpenSource(LPath(words[1]));
        answer.Member("rate", m_source->GetSampleRate()).Member("length", m_source->GetLength());
        answer.Member("growing", m_source->IsGrowing());
        return !m_source->IsError();
    }
    // wind <initial speed> <final speed> <ramp ms>: from the place that a skip has chosen
    bool Wind(const Words& words, Json& answer) {
        m_source = LSoundSource::Make<WindSource>(m_source, Real(words, 1), Real(words, 2), Number(words, 3));
        answer.Member("length", m_source->GetLength());
        return !m_source->IsError();
    }
    bool Skip(const Words& words, Json&) {
        m_source->Seek(Number(words, 1));
        return true;
    }
    bool Start(const Words&, Json&) { return m_player.Start(m_source); }
    bool Stop(const Words&, Json&) {
        m_player.Stop();
        return true;
    }
    bool Play(const Words&, Json&) {
        m_player.Play();
        return true;
    }
    bool Pause(const Words&, Json&) {
        m_player.Pause();
        return true;
    }
    bool Cue(const Words& words, Json&) {
        m_player.Cue(Number(words, 1) != 0);
        return true;
    }
    bool Seek(const Words& words, Json&) {
        m_player.Seek(Number(words, 1));
        return true;
    }
    bool Speed(const Words& words, Json&) {
        m_player.SetSpeed(Number(words, 1));
        return true;
    }
    // record <file> <rate>: from the microphone, until endrecord
    bool Record(const Words& words, Json&) {
        if (words.size() < 3) return false;
        const LSoundSink sink = LWaveFile::OpenSinkPCM(LPath(words[1]), 16, 1, Number(words, 2));
        return sink && m_recorder.Start(sink, 0, -128, 0, LSoundRecorder::kRecordAtOnce);
    }
    bool EndRecord(const Words&, Json&) {
        m_recorder.Stop();
        return true;
    }
    bool Graph(const Words& words, Json& answer) {
        std::array<uint8_t, LSoundPlayer::kCueGraphBytes> graph;
        if (!m_player.GetCueGraph(graph.data(), Number(words, 1))) return false;
        answer.Key("graph").Open('[');
        for (const uint8_t bar : graph) answer.Value(int64_t{bar});
        answer.Close(']');
        return true;
    }

    LSoundSource m_source;
    LSoundPlayer m_player{*this};
    struct Deaf final : LSoundRecorderNotify {
        void OnRecording() override {}
        void OnWaiting() override {}
        void OnStopped(int32_t) override {}
        void OnTime(int32_t) override {}
        void OnLevel() override {}
    } m_deaf;
    LSoundRecorder m_recorder{m_deaf};
};

const Tool::Command Tool::kCommands[] = {
    {"device", &Tool::Device}, {"open", &Tool::Open},           {"wind", &Tool::Wind},
    {"skip", &Tool::Skip},     {"start", &Tool::Start},         {"stop", &Tool::Stop},
    {"play", &Tool::Play},     {"pause", &Tool::Pause},         {"cue", &Tool::Cue},
    {"seek", &Tool::Seek},     {"speed", &Tool::Speed},         {"graph", &Tool::Graph},
    {"record", &Tool::Record}, {"endrecord", &Tool::EndRecord},
};

bool Tool::Obey(const Words& words) {
    if (words.empty()) return true;
    if (words[0] == "quit") return false;
    const uint32_t begun = LTickMs();
    Json answer = Begin("answer", words[0]);
    bool ok = false;
    for (const Command& command : kCommands) {
        if (words[0] == command.name) ok = (this->*command.run)(words, answer);
    }
    answer.Member("ok", ok).Member("took", LTickMs() - begun);
    answer.Member("playing", m_player.IsPlaying()).Member("paused", m_player.IsPaused());
    PrintLine(answer.Member("position", m_player.PositionFrames()));
    return true;
}

Words Split(const std::string& line) {
    Words words(1);
    for (const char c : line) {
        if (c > ' ')
            words.back() += c;
        else if (!words.back().empty())
            words.emplace_back();
    }
    if (words.back().empty()) words.pop_back();
    return words;
}

void PrintTrace(std::string_view line, std::string_view) {
    Json json = Begin("trace", line);
    PrintLine(json);
}

}  // namespace

int main() {
    LSetTraceSink(PrintTrace);
    // As the program runs.
    SetPriorityClass(GetCurrentProcess(), HIGH_PRIORITY_CLASS);
    Input input;
    Tool tool;
    input.Start(kThreadNormal);
    const HANDLE arrived = input.Arrived().NativeHandle();
    for (;;) {
        std::string line;
        while (input.Take(line)) {
            if (!tool.Obey(Split(line))) return 0;
        }
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
        MsgWaitForMultipleObjects(1, &arrived, FALSE, INFINITE, QS_ALLINPUT);
    }
}
