#include "support.h"

#include "KestaArray.h"
#include "KestaMap.h"
#include "KestaStack.h"
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
    EXPECT_EQ(map.get("a"), 9);
    testing::internal::CaptureStdout();
    EXPECT_EQ(map.dump(), 0);
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(), "KEY=A\tVALUE=3\nKEY=B\tVALUE=1\nKEY=a\tVALUE=9\n");
    CKestaString key;
    int value = 0;
    EXPECT_THROW(map.getKeyValue(key, value), CKestaExc_ArrayOutOfBound);
    map.resetIterator();
    map.getKeyValue(key, value);
    EXPECT_EQ(key, "A");
    EXPECT_EQ(value, 3);
    std::string walked;
    for (const auto& [name, number] : std::as_const(map))
        walked += name + std::to_string(number);
    EXPECT_EQ(walked, "A3B1a9");
    EXPECT_TRUE(map.remove("B"));
    EXPECT_FALSE(map.remove("B"));
    EXPECT_FALSE(map.find("B"));
}

TEST(Map, CursorNeverLeavesItsMap)
{
    Map map, assigned, empty(map);
    for (int i = 1; i <= 4; ++i)
        map.add(CKestaString(i), i);
    EXPECT_EQ(rest(map), "") << "a map starts at its end";
    EXPECT_EQ(rest(empty), "");
    empty = Map(map);
    EXPECT_EQ(rest(empty), "") << "a copy stands at the end, too";
    map.resetIterator();
    EXPECT_EQ(map.getNext(), 1);
    Map copy(map);
    assigned = map;
    const Map& itself = map;
    map = itself;
    map.remove("2");   // under the cursor
    EXPECT_EQ(rest(map), "34");
    EXPECT_EQ(rest(copy), "234");
    EXPECT_EQ(rest(assigned), "234");
    map.resetIterator();
    map.removeAll();
    EXPECT_EQ(rest(map), "");
}

struct Unassignable
{
    int number = 7;
    Unassignable() = default;
    Unassignable(const Unassignable&) = default;
    Unassignable& operator=(const Unassignable&) { throw number; }
};

TEST(Map, CursorWaitsForTheAssignment)
{
    CKestaMap<int, Unassignable> map;
    map.add(1, {});
    map.resetIterator();
    int key = 0;
    Unassignable value;
    EXPECT_THROW(map.getKeyValue(key, value), int);
    EXPECT_EQ(map.getNext().number, 7) << "the entry is not skipped";
}

TEST(Map, MissingKeys)
{
    enum class Letter : int;
    const std::string error = "! CKestaMap::get(). KEY=";
    EXPECT_EQ(errorOf([] { Map().get("key"); }), error + "key");
    EXPECT_EQ(errorOf([] { CKestaMap<int, int>().get(256 + 66); }), error + "B");
    EXPECT_EQ(errorOf([] { CKestaMap<Letter, int>().get(Letter(66)); }), error + "B");
}

struct Item
{
    char letter;
    bool operator==(const Item& other) const
    {
        return (letter == '!' ? throw letter : letter) == other.letter;
    }
};

TEST(Vector, RemoveSkipsTheNeighbour)
{
    const std::string rows[][2] = {
        {"aab", "ab"}, {"aba", "b"}, {"aaa", "a"}, {"baa", "ba"}, {"abc!d", "bc!d"}};
    for (const auto& [items, want] : rows)
    {
        CKestaVector<Item> vector;
        for (const char c : items)
            vector.push_back({c});
        try
        {
            // It moves while others are compared with it.
            vector.remove(vector[static_cast<int>(items.find('a'))]);
        }
        catch (char)   // the items found before stay removed
        {
        }
        const CKestaVector<Item> copy(std::move(vector));
        std::string left;
        for (const Item& item : vector)
            left += item.letter;
        EXPECT_EQ(left, want) << items;
        EXPECT_EQ(copy.size(), want.size()) << "moving is copying";
        vector.clear();
        EXPECT_EQ(vector.size(), 0u);
    }
}

TEST(ArrayAndStack, AddAndRemove)
{
    CKestaArray<int> array;
    CKestaStack<int> stack;
    for (const int item : {1, 2, 3})
    {
        EXPECT_TRUE(array.add(item));
        stack.push(item);
    }
    CKestaArray<int> assigned;
    assigned = array;
    int sum = 0;
    for (const int item : std::as_const(assigned))
        sum = 10 * sum + item;
    EXPECT_EQ(sum, 123);
    EXPECT_EQ(std::as_const(array).getAt(1), 2);
    stack.pop();
    EXPECT_EQ(stack.top(), 2);
    array.removeAll();
    EXPECT_EQ(array.size(), 0u);
    stack.removeAll();
    EXPECT_TRUE(stack.isEmpty());
}
