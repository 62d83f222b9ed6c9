#include "app/window/RowOrder.h"

#include <algorithm>

#include "base/LText.h"

// Indexes change with every removed row, so the maps hold places: serial numbers that rise along the rows and
// never change. A binary search turns a place into an index.

int RowOrder::IndexOfPlace(uint32_t place) const {
    const auto row = std::lower_bound(m_rows.begin(), m_rows.end(), place,
                                      [](const Row& r, uint32_t wanted) { return r.place < wanted; });
    return static_cast<int>(row - m_rows.begin());
}

int RowOrder::IndexOf(int32_t number) const {
    const auto found = m_placeOfNumber.find(number);
    return found == m_placeOfNumber.end() ? -1 : IndexOfPlace(found->second);
}

int RowOrder::IndexOf(const LPath& record) const {
    const auto found = m_placeOfRecord.find(LUpper(record.View()));
    return found == m_placeOfRecord.end() ? -1 : IndexOfPlace(found->second);
}

void RowOrder::Append(int32_t number, const LPath& record) {
    m_placeOfNumber[number] = m_nextPlace;
    m_placeOfRecord[LUpper(record.View())] = m_nextPlace;
    m_rows.push_back({m_nextPlace++, number, std::string(record.View())});
}

void RowOrder::Remove(int index) {
    const auto row = m_rows.begin() + index;
    m_placeOfNumber.erase(row->number);
    m_placeOfRecord.erase(LUpper(row->record));
    m_rows.erase(row);
}

void RowOrder::Clear() {
    *this = RowOrder();
}
