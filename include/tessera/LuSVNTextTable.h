// Rows of strings laid out in fixed-width columns for plain-text output.
//
//   auto table = LuSVNTextTable::tableWithColumns(2);
//   table->setString("7", 0, 0);
//   table->setString("x", 0, 1);
//   table->setString("12", 1, 0);
//   table->setString("y", 1, 1);
//   table->setAlignment(LuSVNTextTableAlignRight, 0);
//   table->stringValue();   // " 7 x\n12 y\n"
//
// Each column is as wide as its widest cell (or as set with setWidth),
// columns are separated by one blank, and each is left- or right-aligned.
// Lengths and widths count Unicode code points of the UTF-8 text.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tessera/LuSVNExport.h>

/// Column alignments; any other value lays out like left.
inline constexpr std::int64_t LuSVNTextTableAlignLeft = 0;
inline constexpr std::int64_t LuSVNTextTableAlignRight = 1;

class TESSERA_EXPORT LuSVNTextTable {
public:
    /// A table of that many columns, without rows; every column of width 0
    /// and left-aligned. Raises "Invalid parameter not satisfying: columns >= 0"
    /// for a negative count.
    explicit LuSVNTextTable(std::int32_t columns);
    static std::shared_ptr<LuSVNTextTable> tableWithColumns(std::int32_t columns);

    std::int32_t columns() const { return columns_; }
    /// The number of rows.
    std::int32_t rows() const { return static_cast<std::int32_t>(rows_.size()); }

    /// Appends a row of empty cells and answers the new number of rows.
    std::int32_t addRow();

    /// The cell's text. Raises "Invalid parameter not satisfying: row >= 0 &&
    /// row < [rows count]" or "... column >= 0 && column < columns".
    const std::string& stringAtRow(std::int32_t row, std::int32_t column) const;

    /// Stores the text (nullopt stores "") in the cell, first appending rows
    /// until the row exists, and widens the column to the text's length when
    /// it is longer. Raises "Invalid parameter not satisfying: column >= 0 &&
    /// column < columns", or "... row >= 0" for a negative row.
    void setString(const std::optional<std::string>& string, std::int32_t row, std::int32_t column);

    /// The column's width (column checked as in setString).
    std::int32_t widthForColumn(std::int32_t column) const;
    /// Sets the width, which may make the column narrower than its cells: a
    /// left-aligned cell that is not in the last column is then cut to it; a
    /// width of 0 leaves the column out. Raises "Invalid parameter not
    /// satisfying: width >= 0" for a negative width.
    void setWidth(std::int32_t width, std::int32_t column);

    /// The column's alignment (column checked as in setString).
    std::int64_t alignmentForColumn(std::int32_t column) const;
    void setAlignment(std::int64_t alignment, std::int32_t column);

    /// The text with as many blanks before it as it lacks to the length;
    /// unchanged when it is as long or longer. Raises "Invalid parameter not
    /// satisfying: length >= 0" for a negative length.
    static std::string leftPadString(const std::string& string, std::int32_t length);

    /// The laid-out table: one line per row joined by "\n", with a final "\n"
    /// unless the text is empty. Within a line the columns of width above 0,
    /// in order and one blank apart: a right-aligned cell padded on the left
    /// to the width; any other padded on the right to exactly the width (cut
    /// when longer), except in the last column, which is never padded on the
    /// right.
    std::string stringValue() const;

private:
    void checkColumn(std::int32_t column) const;

    std::int32_t columns_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::int32_t> columnWidths_;
    std::vector<std::int64_t> columnAlignment_;
};
