#ifndef KESTA_MAP_H
#define KESTA_MAP_H

#include "KestaException.h"
#include "KestaExport.h"
#include "KestaString.h"

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <map>
#include <ostream>
#include <type_traits>
#include <utility>

/// `std::cout`, for `CKestaMap::dump`: including `<iostream>` here would add its start-up code to
/// every user of this header.
KESTA_API std::ostream& kestaStandardOutput();

/// An ordered map of unique keys with a cursor of its own.
///
/// Keys ascend by `std::less<K>`; texts compare byte by byte, so "B" stands before "a". Keys and
/// values are copied in; the map owns its copies, and references that it hands out live as long as
/// their entry.
///
///     map.resetIterator();
///     for (std::size_t i = 0; i < map.getNoOfItems(); ++i)
///         map.getKeyValue(strKey, strValue);
///
/// A range-based `for` walks it without the cursor, a const map too:
///
///     for (const auto& [strKey, strValue] : map)
///
/// The cursor always stands at an entry of this map or at its end: a copied or assigned map starts
/// at the entry that the other's cursor names, removing the entry under the cursor moves it to the
/// next, and `removeAll` leaves it at the end.
///
/// Thread contract: no locking. The cursor is part of the map, so two walks that use it must not
/// overlap; several threads may read one const map.
template <class K, class V>
class CKestaMap
{
    typedef std::map<K, V, std::less<K>> CStlMap;

public:
    typedef K key_type;   ///< for algorithms and adapters
    typedef V mapped_type;
    typedef typename CStlMap::value_type value_type;
    typedef typename CStlMap::reference reference;
    typedef typename CStlMap::const_reference const_reference;
    typedef typename CStlMap::const_iterator iterator;
    typedef typename CStlMap::const_iterator const_iterator;
    typedef typename CStlMap::difference_type difference_type;
    typedef typename CStlMap::size_type size_type;

    /// An empty map, the cursor at its end.
    CKestaMap() : m_pIterator(m_stlMap.begin()) {}

    /// A map of the given pairs, the cursor at its first entry. Of several pairs with the same key,
    /// the first counts.
    CKestaMap(std::initializer_list<value_type> entries)
        : m_stlMap(entries), m_pIterator(m_stlMap.begin())
    {
    }

    /// The same entries, the cursor at the same one.
    CKestaMap(const CKestaMap& other) : m_stlMap(other.m_stlMap), m_pIterator(sameEntry(other)) {}

    /// The same entries, the cursor at the same one.
    CKestaMap& operator=(const CKestaMap& other)
    {
        if (this != &other)
        {
            CStlMap copy(other.m_stlMap);   // if this throws, nothing has changed
            m_stlMap.swap(copy);
            m_pIterator = sameEntry(other);
        }
        return *this;
    }

    virtual ~CKestaMap() = default;

    /// Inserts the pair. A key that is there already keeps its value, silently; the result is
    /// true in either case (`forceAdd` replaces).
    bool add(const K& key, const V& value)
    {
        m_stlMap.try_emplace(key, value);
        return true;
    }

    /// Removes the key if it is there, then inserts the pair. Key and value may be part of the
    /// entry that is replaced, as in `map.forceAdd(strKey, map.get(strKey))`. If the cursor is at
    /// the entry that is replaced, it moves to the next one.
    void forceAdd(const K& key, const V& value)
    {
        const K keyCopy(key);
        const V valueCopy(value);
        remove(keyCopy);
        add(keyCopy, valueCopy);
    }

    /// Removes the entry; false when there was none.
    bool remove(const K& key)
    {
        const auto itEntry = m_stlMap.find(key);
        if (itEntry == m_stlMap.end())
            return false;
        if (m_pIterator == itEntry)
            ++m_pIterator;
        m_stlMap.erase(itEntry);
        return true;
    }

    /// Removes every entry.
    void removeAll()
    {
        m_stlMap.clear();
        m_pIterator = m_stlMap.end();
    }

    /// The number of entries.
    std::size_t getNoOfItems() const { return m_stlMap.size(); }
    std::size_t size() const { return m_stlMap.size(); }

    /// True when there is no entry.
    bool empty() const { return m_stlMap.empty(); }

    /// True when the key is there.
    bool find(const K& key) const { return m_stlMap.find(key) != m_stlMap.end(); }

    /// The value of a key.
    ///
    /// Throws: `CKestaExc`, "CKestaMap::get(). KEY=" and the key, when the key is missing.
    /// Intended: an `int` key is shown as the character whose code is its low byte. A key that
    /// can't be appended to a string is not shown.
    V& get(const K& key) { return const_cast<V&>(std::as_const(*this).get(key)); }

    /// The same for a map that is only read.
    const V& get(const K& key) const
    {
        const auto itEntry = m_stlMap.find(key);
        if (itEntry == m_stlMap.end())
            throw missing(key);
        return itEntry->second;
    }

    /// Puts the cursor at the first entry.
    void resetIterator() { m_pIterator = m_stlMap.begin(); }

    /// Returns the value at the cursor, and moves the cursor on.
    ///
    /// Throws: `CKestaExc_ArrayOutOfBound` at the end.
    V& getNext()
    {
        V& value = current().second;
        ++m_pIterator;
        return value;
    }

    /// Assigns the key and the value at the cursor, and moves the cursor on, unless an assignment
    /// throws.
    ///
    /// Throws: `CKestaExc_ArrayOutOfBound` at the end; the arguments are left as they were.
    void getKeyValue(K& key, V& value)
    {
        const auto& entry = current();
        key = entry.first;
        value = entry.second;
        ++m_pIterator;
    }

    /// The first entry and the end, for reading: pairs of key and value in the order of the keys.
    /// The cursor stays where it is.
    auto begin() const { return m_stlMap.begin(); }
    auto end() const { return m_stlMap.end(); }

    /// Writes "KEY=", key, tab, "VALUE=", value and a flushed newline to standard output for every
    /// entry, and leaves the cursor at the end. Returns 0.
    int dump()
    {
        for (resetIterator(); m_pIterator != m_stlMap.end(); ++m_pIterator)
            kestaStandardOutput() << "KEY=" << m_pIterator->first
                                  << "\tVALUE=" << m_pIterator->second << std::endl;
        return 0;
    }

private:
    typename CStlMap::iterator sameEntry(const CKestaMap& other)
    {
        const typename CStlMap::const_iterator itOther = other.m_pIterator;
        return itOther == other.m_stlMap.end() ? m_stlMap.end() : m_stlMap.find(itOther->first);
    }

    typename CStlMap::value_type& current()
    {
        if (m_pIterator == m_stlMap.end())
            throw CKestaExc_ArrayOutOfBound();
        return *m_pIterator;
    }

    static CKestaExc missing(const K& key)
    {
        CKestaString strMessage("CKestaMap::get(). KEY=");
        if constexpr (std::is_arithmetic_v<K> || std::is_enum_v<K>)
            strMessage += static_cast<char>(key);
        else if constexpr (canBeAppended<K>(0))
            strMessage += key;
        return CKestaExc(strMessage);
    }

    template <class TKey>
    static constexpr auto canBeAppended(int /*preferred*/)
        -> decltype(std::declval<CKestaString&>() += std::declval<const TKey&>(), true)
    {
        return true;
    }
    template <class TKey>
    static constexpr bool canBeAppended(long /*otherwise*/)
    {
        return false;
    }

    CStlMap m_stlMap;
    typename CStlMap::iterator m_pIterator;
};

#endif
