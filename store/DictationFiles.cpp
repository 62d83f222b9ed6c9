#include "store/DictationFiles.h"

#include "base/LFile.h"

DictationFiles DictationFiles::OfNumber(const LPath& folder, int32_t number) {
    return OfPath(LPath::Format("%s%.8ld.dat", folder.c_str(), static_cast<long>(number)));
}

DictationFiles DictationFiles::OfPath(const LPath& path) {
    return {path.WithExtension(".dat"), path.WithExtension(".wav"), path.WithExtension(".txt")};
}

DictationFiles DictationFiles::InFolder(const LPath& folder) const {
    return OfPath(LPath::Join(folder.View(), LFileNameOf(record.View())));
}

bool DictationFiles::AnyExists() const {
    return LFile::Exists(record) || LFile::Exists(audio) || LFile::Exists(notes);
}
