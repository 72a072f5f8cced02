// Layout of text tables: column widths, alignment, skipped columns, padding
// and cutting, and the argument checks.
#include <tessera/LuSVNPlatformExceptions.h>
#include <tessera/LuSVNTextTable.h>

#include <gtest/gtest.h>

#include <functional>

#include "TesseraTestSupport.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

using tessera_test::expectParameterAssertion;

std::shared_ptr<LuSVNTextTable> tableOf(std::int32_t columns, const Rows& rows)
{
    auto table = LuSVNTextTable::tableWithColumns(columns);
    for (std::size_t row = 0; row < rows.size(); ++row)
        for (std::size_t column = 0; column < rows[row].size(); ++column)
            table->setString(rows[row][column], static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
    return table;
}

TEST(LuSVNTextTableTest, LaysOutRows)
{
    const struct {
        const char* name;
        std::int32_t columns;
        Rows rows;
        std::function<void(LuSVNTextTable&)> adjust;
        std::string text;
    } cases[] = {
        {"no rows", 2, {}, nullptr, ""},
        {"left-aligned", 2, {{"a", "bb"}, {"ccc", "d"}}, nullptr, "a   bb\nccc d\n"},
        {"right-aligned first column", 2, {{"7", "x"}, {"12", "y"}},
         [](LuSVNTextTable& t) { t.setAlignment(LuSVNTextTableAlignRight, 0); }, " 7 x\n12 y\n"},
        {"right-aligned last column", 2, {{"a", "1"}, {"b", "100"}},
         [](LuSVNTextTable& t) { t.setAlignment(LuSVNTextTableAlignRight, 1); }, "a   1\nb 100\n"},
        {"unknown alignment is left", 2, {{"7", "x"}, {"12", "y"}},
         [](LuSVNTextTable& t) { t.setAlignment(2, 0); }, "7  x\n12 y\n"},
        {"column of width 0 skipped without separator", 3, {{"a", "b", "c"}, {"dd", "e", "f"}},
         [](LuSVNTextTable& t) { t.setWidth(0, 1); }, "a  c\ndd f\n"},
        {"empty column skipped", 3, {{"a", "", "c"}}, nullptr, "a c\n"},
        {"narrowed column cuts its cells", 2, {{"abcdef", "x"}},
         [](LuSVNTextTable& t) { t.setWidth(3, 0); }, "abc x\n"},
        {"narrowed right-aligned column keeps its cells", 2, {{"abcdef", "x"}},
         [](LuSVNTextTable& t) {
             t.setWidth(3, 0);
             t.setAlignment(LuSVNTextTableAlignRight, 0);
         },
         "abcdef x\n"},
        {"narrowed last column keeps its cells", 2, {{"a", "long"}},
         [](LuSVNTextTable& t) { t.setWidth(1, 1); }, "a long\n"},
        {"widened column pads", 2, {{"a", "b"}},
         [](LuSVNTextTable& t) { t.setWidth(4, 0); }, "a    b\n"},
        {"rows made by setString are empty", 2, {},
         [](LuSVNTextTable& t) { t.setString("x", 2, 1); }, "\n\nx\n"},
        {"no visible cell at all", 1, {{""}, {""}}, nullptr, "\n\n"},
        {"one empty line", 1, {{""}}, nullptr, ""},
        {"code points, not bytes", 2, {{"\xC3\xA9t\xC3\xA9", "x"}, {"abcd", "y"}}, nullptr,
         "\xC3\xA9t\xC3\xA9  x\nabcd y\n"},
        {"cut between code points", 2, {{"\xC3\xA9t\xC3\xA9", "x"}},
         [](LuSVNTextTable& t) { t.setWidth(1, 0); }, "\xC3\xA9 x\n"},
    };
    for (const auto& c : cases) {
        auto table = tableOf(c.columns, c.rows);
        if (c.adjust)
            c.adjust(*table);
        EXPECT_EQ(table->stringValue(), c.text) << c.name;
    }
}

TEST(LuSVNTextTableTest, CellsRowsAndWidths)
{
    LuSVNTextTable table(2);
    EXPECT_EQ(table.columns(), 2);
    EXPECT_EQ(table.rows(), 0);
    EXPECT_EQ(table.addRow(), 1);
    EXPECT_EQ(table.stringAtRow(0, 1), "");

    table.setString("x", 5, 0);  // rows 1 to 5 appear
    EXPECT_EQ(table.rows(), 6);
    EXPECT_EQ(table.stringAtRow(5, 0), "x");
    EXPECT_EQ(table.stringAtRow(3, 0), "");

    table.setString("wide", 1, 1);
    table.setString("w", 2, 1);  // widths only grow through setString
    EXPECT_EQ(table.widthForColumn(1), 4);
    table.setString(std::nullopt, 1, 1);
    EXPECT_EQ(table.stringAtRow(1, 1), "");
    EXPECT_EQ(table.widthForColumn(1), 4);

    table.setWidth(2, 1);
    EXPECT_EQ(table.widthForColumn(1), 2);
    EXPECT_EQ(table.alignmentForColumn(0), LuSVNTextTableAlignLeft);
    table.setAlignment(LuSVNTextTableAlignRight, 0);
    EXPECT_EQ(table.alignmentForColumn(0), LuSVNTextTableAlignRight);
}

TEST(LuSVNTextTableTest, LeftPadding)
{
    const struct {
        std::string text;
        std::int32_t length;
        std::string padded;
    } cases[] = {
        {"7", 3, "  7"}, {"123", 3, "123"}, {"1234", 3, "1234"}, {"", 2, "  "}, {"x", 0, "x"},
        {"\xC3\xA9", 2, " \xC3\xA9"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LuSVNTextTable::leftPadString(c.text, c.length), c.padded);
}

TEST(LuSVNTextTableTest, ArgumentChecks)
{
    LuSVNTextTable table(2);
    table.addRow();
    const std::string column = "column >= 0 && column < columns";
    const std::string row = "row >= 0 && row < [rows count]";
    const struct {
        std::function<void()> call;
        std::string condition;
    } cases[] = {
        {[&] { table.stringAtRow(1, 0); }, row},
        {[&] { table.stringAtRow(-1, 0); }, row},
        {[&] { table.stringAtRow(0, 2); }, column},
        {[&] { table.stringAtRow(0, -1); }, column},
        {[&] { table.setString("x", 0, 2); }, column},
        {[&] { table.setString("x", -1, 0); }, "row >= 0"},
        {[&] { table.widthForColumn(2); }, column},
        {[&] { table.setWidth(1, -1); }, column},
        {[&] { table.setWidth(-1, 0); }, "width >= 0"},
        {[&] { table.alignmentForColumn(-1); }, column},
        {[&] { table.setAlignment(LuSVNTextTableAlignRight, 2); }, column},
        {[] { LuSVNTextTable::leftPadString("x", -1); }, "length >= 0"},
        {[] { LuSVNTextTable table(-1); }, "columns >= 0"},
    };
    for (const auto& c : cases)
        expectParameterAssertion(c.call, c.condition);
    EXPECT_EQ(table.rows(), 1);  // a refused setString adds no rows
}

}  // namespace
