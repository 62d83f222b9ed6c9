#include "app/transport/CurrentDictation.h"

std::optional<DictationFiles> CurrentDictation::Choose(const DictationSelection& selection) const {
    if (std::optional<DictationFiles> focused = selection.Focused()) return focused;
    if (m_files && selection.IsSelected(*m_files)) return m_files;
    return selection.First();
}

bool CurrentDictation::Is(const std::optional<DictationFiles>& files) const {
    return m_files.has_value() == files.has_value() && (!files || files->record == m_files->record);
}
