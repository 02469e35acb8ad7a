#include "support.h"

#include "KestaMap.h"
#include "KestaVector.h"

using Map = CKestaMap<CKestaString, int>;

/// The values from the cursor on.
static std::string rest(Map& map)
{
    std::string values;
    try
    {
        for (;;)
            values += std::to_string(map.getNext());
    }
    catch (const CKestaExc_ArrayOutOfBound&)
    {
        return values;
    }
}

TEST(Map, EntriesAndWalk)
{
    Map map;
    map.resetIterator();
    EXPECT_EQ(rest(map), "");
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
    EXPECT_EQ(rest(map), "");
    EXPECT_EQ(rest(copy) + rest(assigned), "234234");
}

template <class Key>
static CKestaString errorOfGet(Key key)
try
{
    return CKestaMap<Key, CKestaString>().get(key);
}
catch (const CKestaExc& exc)
{
    return exc.GetErrorSource() + "/" + exc.GetErrorMessage();
}

TEST(Map, MissingKeys)
{
    EXPECT_EQ(errorOfGet(CKestaString("k")), "Fernhold/CKestaMap::get(). KEY=k");
    EXPECT_EQ(errorOfGet(66), "Fernhold/CKestaMap::get(). KEY=B");
    EXPECT_EQ(errorOfGet(256 + 7), "Fernhold/CKestaMap::get(). KEY=\a");
}

TEST(Vector, RemoveSkipsTheNeighbour)
{
    const std::string rows[][2] = {{"aa", "a"}, {"aba", "b"}, {"aac", "ac"}, {"aaa", "a"},
        {"ba", "b"}, {"bc", "bc"}, {"aaaa", "aa"}, {"", ""}};
    for (const auto& [items, want] : rows)
    {
        CKestaVector<char> vector;
        for (const char c : items)
            vector.push_back(c);
        vector.remove(items[0] == 'a' ? vector[0] : 'a');
        std::string left;
        for (std::size_t i = 0; i < vector.size(); ++i)
            left += vector[static_cast<int>(i)];
        EXPECT_EQ(left, want) << items << " without a, an item of its own where it begins with one";
    }
}
