#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/LPath.h"

// Which dictation stands in which row of the list. Rows are added at the end and go from anywhere; a number or
// a record is found without a search, however many rows there are. Indexes count from 0, -1 is no row.
class RowOrder {
public:
    int Count() const { return static_cast<int>(m_rows.size()); }
    int IndexOf(int32_t number) const;
    // By the record's path, without regard to case.
    int IndexOf(const LPath& record) const;
    bool Holds(int index) const { return index >= 0 && index < Count(); }
    // Of a row that is there.
    int32_t NumberAt(int index) const { return m_rows[static_cast<size_t>(index)].number; }
    LPath RecordAt(int index) const { return LPath(m_rows[static_cast<size_t>(index)].record); }

    // Neither the number nor the record may have a row already.
    void Append(int32_t number, const LPath& record);
    void Remove(int index);
    void Clear();

private:
    struct Row {
        uint32_t place;  // grows from row to row, and stays with the row when others go
        int32_t number;
        std::string record;
    };

    int IndexOfPlace(uint32_t place) const;

    std::vector<Row> m_rows;
    std::unordered_map<int32_t, uint32_t> m_placeOfNumber;
    std::unordered_map<std::string, uint32_t> m_placeOfRecord;  // by the path in capitals
    uint32_t m_nextPlace = 0;
};
