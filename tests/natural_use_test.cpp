// What hosts write without thinking compiles, without a warning, and means the obvious.

#include "support.h"

#include "KestaArray.h"
#include "KestaDate.h"
#include "KestaIPRange.h"
#include "KestaIPUtilities.h"
#include "KestaMap.h"
#include "KestaStack.h"
#include "KestaVector.h"

TEST(NaturalUse, Strings)
{
    const std::string standard("std");
    const CKestaString text("k"), fromStandard = standard, fromLiteral = "literal";
    CKestaString changing;
    changing = "x";
    changing = standard;
    changing = text;
    changing += "y";
    EXPECT_EQ(changing + text + "l" + standard + 'c', "kyklstdc");
    EXPECT_EQ(CKestaString("l" + text) + CKestaString(standard + text), "lkstdk");
    const auto size = [](CKestaString byValue) { return byValue.size(); };
    EXPECT_EQ(size("v") + size(standard) + size(1) + size(2.5), 13u);
    EXPECT_TRUE(text == "k" && "k" == text && text == std::string("k") && std::string("k") == text);
    EXPECT_TRUE(text != "x" && "x" != text && text != standard && standard != text);
    EXPECT_TRUE(text == text && !(text != text) && text < fromStandard);
    char buffer[] = "K";
    EXPECT_TRUE(text.equals(buffer, false) && !text.equals(CKestaString("K"), true));
    EXPECT_TRUE(text.beginsWith("k") && fromLiteral.endsWith(std::string("l")));
    CKestaString token = CKestaString(" a ").trim();
    EXPECT_TRUE(
        CKestaString("a,b").getNextToken(token, ",") && token == buffer + 1 + CKestaString("a"));
}

TEST(NaturalUse, ConstObjectsAndTemporaries)
{
    std::ostringstream out;
    try
    {
        throw CKestaExc("why");
    }
    catch (const CKestaExc& exc)
    {
        out << exc << exc.GetErrorNumber() << " ";
    }
    const CKestaDate date("2/28/2007"), later = date + 1;
    out << date << " " << later - date << (date == CKestaDate("2/28/2007")) << date.compare(later);
    EXPECT_EQ(out.str(), "-9999;Fernhold;why\n-9999 02/28/2007 11-1");
    const CKestaArray<CKestaString> array;
    const CKestaVector<int> vector;
    const CKestaStack<int> stack;
    const CKestaMap<CKestaString, int> map;
    EXPECT_EQ(array.size() + vector.size() + stack.size() + map.getNoOfItems(), 0u);
    EXPECT_TRUE(stack.isEmpty() && !map.find("k"));
    const KestaIPRange range("10.1.*.*"), fromString(std::string("10.1.2.*"));
    const KestaIPv4Address address("10.1.2.3");
    EXPECT_TRUE(range.isMember(&address) && range.isMember(fromString));
    EXPECT_TRUE(*range.getStartAddress() <= &address && !(address == range.getEndAddress()));
    CKestaArray<KestaIPv4Address> in, kept;
    in.add(KestaIPv4Address("10.1.2.3"));
    KestaIPUtilities::getfilteredIPv4Addresses(kept, std::as_const(in));
    EXPECT_EQ(kept.getAt(0).getStrAddress(), "10.1.2.3");
}
