#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/LPath.h"

// The dictations of the list's rows. Rows are added at the end and removed anywhere; the row of a number or
// record is found in logarithmic time.
// Units:  indexes count from 0; -1 is no row.
// Thread: one at a time.
class RowOrder {
public:
    int Count() const { return static_cast<int>(m_rows.size()); }
    int IndexOf(int32_t number) const;
    // The same by the record's path, without regard to case.
    int IndexOf(const LPath& record) const;
    bool Holds(int index) const { return index >= 0 && index < Count(); }
    // Precondition of both: Holds(index).
    int32_t NumberAt(int index) const { return m_rows[static_cast<size_t>(index)].number; }
    LPath RecordAt(int index) const { return LPath(m_rows[static_cast<size_t>(index)].record); }

    // Precondition: neither the number nor the record has a row.
    void Append(int32_t number, const LPath& record);
    void Remove(int index);
    void Clear();

private:
    struct Row {
        uint32_t place;  // rises from row to row; unchanged when other rows are removed
        int32_t number;
        std::string record;
    };

    int IndexOfPlace(uint32_t place) const;

    std::vector<Row> m_rows;
    std::unordered_map<int32_t, uint32_t> m_placeOfNumber;
    std::unordered_map<std::string, uint32_t> m_placeOfRecord;  // by the path in capitals
    uint32_t m_nextPlace = 0;
};
