#include <tessera/LuSVNTextTable.h>

#include "LuSVNAssert.h"

namespace {

bool isContinuationByte(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Code points, counted as the bytes that do not continue a UTF-8 sequence: a
// column of names with accents lines up as one of plain letters does.
std::int64_t lengthOf(const std::string& text)
{
    std::int64_t length = 0;
    for (char c : text)
        length += isContinuationByte(c) ? 0 : 1;
    return length;
}

// The first `length` code points.
std::string prefixOf(const std::string& text, std::int64_t length)
{
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        if (!isContinuationByte(text[end]) && length-- == 0)
            break;
    }
    return text.substr(0, end);
}

}  // namespace

LuSVNTextTable::LuSVNTextTable(std::int32_t columns)
    : columns_(columns)
{
    LUSVN_PARAMETER_ASSERT(columns >= 0, "columns >= 0");
    columnWidths_.assign(columns, 0);
    columnAlignment_.assign(columns, LuSVNTextTableAlignLeft);
}

std::shared_ptr<LuSVNTextTable> LuSVNTextTable::tableWithColumns(std::int32_t columns)
{
    return std::make_shared<LuSVNTextTable>(columns);
}

std::int32_t LuSVNTextTable::addRow()
{
    rows_.emplace_back(columns_);
    return rows();
}

void LuSVNTextTable::checkColumn(std::int32_t column) const
{
    LUSVN_PARAMETER_ASSERT(column >= 0 && column < columns_, "column >= 0 && column < columns");
}

const std::string& LuSVNTextTable::stringAtRow(std::int32_t row, std::int32_t column) const
{
    LUSVN_PARAMETER_ASSERT(row >= 0 && row < rows(), "row >= 0 && row < [rows count]");
    checkColumn(column);
    return rows_[row][column];
}

void LuSVNTextTable::setString(const std::optional<std::string>& string, std::int32_t row, std::int32_t column)
{
    checkColumn(column);
    LUSVN_PARAMETER_ASSERT(row >= 0, "row >= 0");
    while (row >= rows())
        addRow();
    rows_[row][column] = string.value_or("");
    const std::int64_t length = lengthOf(rows_[row][column]);
    if (length > columnWidths_[column])
        columnWidths_[column] = static_cast<std::int32_t>(length);
}

std::int32_t LuSVNTextTable::widthForColumn(std::int32_t column) const
{
    checkColumn(column);
    return columnWidths_[column];
}

void LuSVNTextTable::setWidth(std::int32_t width, std::int32_t column)
{
    LUSVN_PARAMETER_ASSERT(width >= 0, "width >= 0");
    checkColumn(column);
    columnWidths_[column] = width;
}

std::int64_t LuSVNTextTable::alignmentForColumn(std::int32_t column) const
{
    checkColumn(column);
    return columnAlignment_[column];
}

void LuSVNTextTable::setAlignment(std::int64_t alignment, std::int32_t column)
{
    checkColumn(column);
    columnAlignment_[column] = alignment;
}

std::string LuSVNTextTable::leftPadString(const std::string& string, std::int32_t length)
{
    LUSVN_PARAMETER_ASSERT(length >= 0, "length >= 0");
    const std::int64_t missing = length - lengthOf(string);
    if (missing <= 0)
        return string;
    return std::string(missing, ' ') + string;
}

std::string LuSVNTextTable::stringValue() const
{
    std::string text;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (row > 0)
            text += '\n';
        std::string line;
        for (std::int32_t column = 0; column < columns_; ++column) {
            const std::int32_t width = columnWidths_[column];
            if (width <= 0)
                continue;
            if (!line.empty())
                line += ' ';
            const std::string& cell = rows_[row][column];
            if (columnAlignment_[column] == LuSVNTextTableAlignRight) {
                line += leftPadString(cell, width);
            } else if (column + 1 < columns_) {
                const std::int64_t length = lengthOf(cell);
                line += length > width ? prefixOf(cell, width) : cell + std::string(width - length, ' ');
            } else {
                line += cell;
            }
        }
        text += line;
    }
    if (!text.empty())
        text += '\n';
    return text;
}
