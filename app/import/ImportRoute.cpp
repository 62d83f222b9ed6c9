#include "app/import/ImportRoute.h"

#include "base/LPath.h"
#include "base/LText.h"

namespace {

constexpr char kRealAudio[] = "Uncompress using Real Audio Player";

constexpr ImportRow kRows[] = {
    {".ra", ImportRoute::RealAudio, kRealAudio},    {".rm", ImportRoute::RealAudio, kRealAudio},
    {".au", ImportRoute::RealAudio, kRealAudio},    {".mp2", ImportRoute::RealAudio, kRealAudio},
    {".aif", ImportRoute::RealAudio, kRealAudio},   {".sri", ImportRoute::VoiceIt, "Uncompress VoiceIt"},
    {".dss", ImportRoute::Dss, "Uncompress DSS"},   {".wav", ImportRoute::Wave, "Loading Wav File"},
    {".mp3", ImportRoute::Mp3, "Loading MP3 File"}, {".dct", ImportRoute::Dct, "Loading DCT File"},
};

// The last two list other files than their titles say. Users know the list as it is.
constexpr struct {
    std::string_view title;
    std::string_view patterns;
} kFilter[] = {
    {"All Audio Files", "*.DCT;*.WAV;*.MP3;*.RA;*.RM;*.AU;*.MP2;*.AIF;*.SRI;*.DSS"},
    {"Dictation Files", "*.DCT"},
    {"Wave Files", "*.WAV"},
    {"MPEG Files", "*.MP3;*.MP2"},
    {"Real Audio Files", "*.RA;*.RM"},
    {"VoiceIt Files", "*.SRI"},
    {"DSS Files", "*.DSS"},
    {"Mac Files (AIF)", "*.DSS"},
    {"Unix Files (AU)", "*.DSS"},
};

}  // namespace

const ImportRow* FindImportRow(std::string_view path) {
    const std::string_view extension = LSplitPath(path).extension;
    for (const ImportRow& row : kRows)
        if (LEqualNoCase(extension, row.extension)) return &row;
    return nullptr;
}

std::string ImportFilter() {
    std::string filter;
    for (const auto& [title, patterns] : kFilter)
        filter.append(title).append(1, '\0').append(patterns).append(1, '\0');
    return filter + '\0';
}
