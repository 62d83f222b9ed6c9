#pragma once

#include "store/CurrentUser.h"
#include "store/DictationFiles.h"
#include "tests/unit/TestKit.h"

// A data folder with user 7 in it.
class StoreTest : public testing::Test {
protected:
    TempFolder m_temp;
    const DataFolder m_data = DataFolder::FromText(m_temp.Path().View());
    const CurrentUser m_user = SelectUser(m_data, 7);

    DictationFiles Current(int32_t number) const {
        return DictationFiles::OfNumber(m_user.currentFolder, number);
    }
    DictationFiles Sent(int32_t number) const { return DictationFiles::OfNumber(m_user.sentFolder, number); }

    // Files whose contents say what they are.
    static void MakeFiles(const DictationFiles& files, const std::string& mark, bool withNotes = true) {
        WriteFileText(files.record, "[file]\r\nname=" + mark + "\r\nnumber=12\r\ndate=1000\r\n");
        WriteFileText(files.audio, mark + " audio" + std::string(100, '.'));
        LFile::Delete(files.notes);
        if (withNotes) WriteFileText(files.notes, mark + " notes" + std::string(1, '\0'));
    }

    static size_t CountFiles(const LPath& folder) {
        size_t count = 0;
        LListFolder(folder, "*.*",
                    [&](const LFolderEntry& entry) { return (count += !entry.isFolder) + 1 > 0; });
        return count;
    }
};
