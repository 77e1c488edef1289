#pragma once
// ColumnCache: the parsed values of the columns an analysis reads, kept in
// memory as columns of doubles while they fit in a byte budget, so that a
// file parsed once can be read again from memory by every later pass.
//
// Storage grows in blocks of rows, and the budget is checked before each
// block is taken, so memory never exceeds the budget (no doubling of a
// vector on the way). Once a row does not fit, everything is freed and the
// cache stays off: the caller then reads its source again for every pass.
#include <cstddef>
#include <memory>
#include <ostream>
#include <vector>

namespace MCCommon_850 {

class ColumnCache {
public:
    // Rows per storage block: 32 KB of each column.
    static constexpr std::size_t kBlockRows = 4096;

    // Empties the cache and starts again for nColumns columns and a budget
    // of budgetBytes. A zero budget keeps the cache off from the start.
    void Start(std::size_t nColumns, std::size_t budgetBytes);

    // Appends one row, values[k] for column k. Returns false (and drops the
    // cache) when the row does not fit in the budget.
    bool Append(const double* values);

    // Replaces each value v of a column by map[v]: category numbers found
    // while reading become codes once every category is known. Values that
    // are not valid indices into map are left alone (missing values).
    void Remap(std::size_t column, const std::vector<int>& map);

    void Drop();

    bool IsActive() const { return m_active; }
    std::size_t GetNRows() const { return m_nRows; }
    std::size_t GetNColumns() const { return m_columns.size(); }
    // Bytes of storage taken.
    std::size_t GetBytes() const { return m_blocks * kBlockRows * sizeof(double) * m_columns.size(); }

    double Get(std::size_t column, std::size_t row) const {
        return m_columns[column][row / kBlockRows][row % kBlockRows];
    }

    void Display(std::ostream& os) const;

private:
    std::vector<std::vector<std::unique_ptr<double[]>>> m_columns;  // per column, its blocks
    std::size_t m_budget = 0;
    std::size_t m_blocks = 0;  // blocks per column
    std::size_t m_nRows = 0;
    bool m_active = false;
};

} // namespace MCCommon_850
