// Number texts, conversions and the keyed collection: many exact texts of the program hang on these.
#include <gtest/gtest.h>

#include <tuple>

#include "mapping/collection.h"
#include "mapping/platform.h"

TEST(Platform, NumberTextsFormatsConversionsAndKeyedCollectionsWhoseNumberKeysStayExactWhenTheSequenceBreaks)
{
    const std::pair<double, const char*> doubles[] = {{200, "200"}, {2.5, "2.5"}, {1.9999999999, "1.9999999999"},
        {6.999999999, "6.999999999"}, {0.0001, "0.0001"}, {10000, "10000"}, {-1, "-1"}, {0, "0"},
        {123456789012.0, "123456789012"}};
    for (const auto& [v, text] : doubles) EXPECT_EQ(conv::NumText(v), text);
    // Through single precision: 6.5 stays 6.5, 0.1 keeps seven digits.
    for (const auto& [v, text] : {std::pair{6.5f, "6.5"}, {0.1f, "0.1"}, {float(5.55), "5.55"}})
        EXPECT_EQ(conv::SingleText(v), text);
    // The formats of the system, whatever the machine's language.
    for (const auto& [v, decimals, text] : {std::tuple{1234.5, 2, "1,234.50"}, {0.456, 2, "0.46"},
                                            {5649627.4, 0, "5,649,627"}, {5.0, 1, "5.0"}})
        EXPECT_EQ(conv::FormatNumber(v, decimals), text);
    for (const auto& [v, text] : {std::pair{0.125, "12.5%"}, {0.0, "0.0%"}, {1.0, "100.0%"}})
        EXPECT_EQ(conv::FormatPercent(v), text);
    EXPECT_EQ(conv::Trim("  forest "), "forest");

    // Numeric texts, and whole numbers that round halves to even and overflow.
    for (const char* yes : {" 5 ", "5.", ".5", "1e3", "-1", "+2.5", "0.001", "25"})
        EXPECT_TRUE(conv::IsNumeric(yes)) << yes;
    for (const char* no : {"", "   ", "abc", "1,000", "5 5", "Max", "-", "."})
        EXPECT_FALSE(conv::IsNumeric(no)) << no;
    EXPECT_DOUBLE_EQ(conv::ToDouble(" 400.0 "), 400.0);
    EXPECT_THROW(conv::ToDouble("abc"), MapError);

    for (const auto& [v, whole] : {std::pair{0.5, 0}, {1.5, 2}, {2.5, 2}, {-2.5, -2}, {32767.0, 32767}})
        EXPECT_EQ(conv::ToInt16(v), whole) << v;
    EXPECT_THROW(conv::ToInt16(32768), MapError);
    EXPECT_EQ(conv::MulInt32(46340, 46340), 2147395600);
    EXPECT_THROW(conv::MulInt32(65536, 32768), MapError);
    EXPECT_THROW(conv::ToInt32(2147483648.0), MapError);

    // Collection keys ignore case, and missing keys fail.
    Collection<int> c;
    c.Add(7, "20_wind.shp"), c.Add(3, "43_roads.shp");
    EXPECT_TRUE(c.Item("20_WIND.SHP") == 7 && c.Count() == 2);
    EXPECT_THROW(c.Item("44_transmissionline.shp"), MapError);
    EXPECT_THROW(c.Add(1, "43_ROADS.shp"), MapError);
    EXPECT_EQ(c.Item(1), 7);  // positions count from 1
    EXPECT_THROW(c.Item(0), MapError);

    // The result collections are keyed "0", "1", ... and found by number; a key
    // out of that sequence must still behave like any other key.
    Collection<int> n;
    n.Add(100, "0"), n.Add(101, "1");
    EXPECT_EQ(n.Item("1"), 101);
    for (const char* other : {"01", "+1", "2", "-0", " 1", ""}) EXPECT_FALSE(n.contains(other)) << other;
    EXPECT_THROW(n.Add(9, "1"), MapError);
    n.Add(105, "5");
    EXPECT_TRUE(n.Item("0") == 100 && n.Item("5") == 105 && !n.contains("2"));
    EXPECT_THROW(n.Add(9, "0"), MapError);
    n.Add(102, "2");  // the position it would have had does not matter any more
    EXPECT_TRUE(n.Item("2") == 102 && n.Item(4) == 102);

    Collection<int> mixed;
    mixed.Add(1, "0"), mixed.Add(2), mixed.Add(3, "2");  // an item without key ends the numbering
    EXPECT_TRUE(!mixed.contains("1") && mixed.Item("2") == 3 && mixed.Item(2) == 2);
}

