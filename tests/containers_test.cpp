#include "support.h"

#include "KestaMap.h"
#include "KestaVector.h"

using Map = CKestaMap<CKestaString, int>;

/// The values from the cursor on.
static std::string rest(Map& map)
{
    std::string values;
    EXPECT_THROW(for (;;) values += std::to_string(map.getNext()), CKestaExc_ArrayOutOfBound);
    return values;
}

TEST(Map, EntriesAndWalk)
{
    Map map;
    for (const char* key : {"B", "a", "A", "a"})
        EXPECT_TRUE(map.add(key, static_cast<int>(map.getNoOfItems()) + 1));
    map.resetIterator();
    EXPECT_EQ(rest(map), "312") << "A, B, a; a key that is there keeps its value";
    map.forceAdd("a", 9);
    testing::internal::CaptureStdout();
    EXPECT_EQ(map.dump(), 0);
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(), "KEY=A\tVALUE=3\nKEY=B\tVALUE=1\nKEY=a\tVALUE=9\n");
    CKestaString key;
    int value;
    EXPECT_THROW(map.getKeyValue(key, value), CKestaExc_ArrayOutOfBound);
    map.resetIterator();
    map.getKeyValue(key, value);
    EXPECT_TRUE(key == "A" && value == 3 && map.remove("B") && !map.remove("B") && !map.find("B"));
    map.forceAdd("A", map.get("A"));   // the value lives in the entry that goes
    EXPECT_EQ(map.get("A"), 3);
}

TEST(Map, CursorNeverLeavesItsMap)
{
    Map map, assigned;
    for (int i = 1; i <= 4; ++i)
        map.add(CKestaString(i), i);
    map.resetIterator();
    EXPECT_EQ(map.getNext(), 1);
    Map copy(map);
    assigned = map;
    map.remove("2");   // under the cursor
    EXPECT_EQ(rest(map), "34");
    map.resetIterator();
    map.removeAll();
    EXPECT_EQ(rest(map) + rest(copy) + rest(assigned), "234234");
}

TEST(Map, MissingKeys)
{
    const std::string error = "! CKestaMap::get(). KEY=";
    EXPECT_EQ(errorOf([] { Map().get("key"); }), error + "key");
    EXPECT_EQ(errorOf([] { CKestaMap<int, int>().get(256 + 66); }), error + "B");
}

TEST(Vector, RemoveSkipsTheNeighbour)
{
    const std::string rows[][2] = {{"aab", "ab"}, {"aba", "b"}, {"aaa", "a"}, {"baa", "aa"}};
    for (const auto& [items, want] : rows)
    {
        CKestaVector<char> vector;
        for (const char c : items)
            vector.push_back(c);
        vector.remove(vector[0]);   // which moves while it is compared with
        EXPECT_EQ(std::string(&vector[0], vector.size()), want) << items;
    }
}
