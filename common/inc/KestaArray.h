#ifndef KESTA_ARRAY_H
#define KESTA_ARRAY_H

#include <cstddef>
#include <deque>

/// A sequence in the order of insertion. Items are copied in; references that it hands out stay
/// valid while items are added.
///
/// Thread contract: no locking; several threads may read one array.
template <class T>
class CKestaArray
{
public:
    CKestaArray() = default;
    CKestaArray(const CKestaArray& other) = default;
    CKestaArray& operator=(const CKestaArray& other) = default;
    virtual ~CKestaArray() = default;

    /// Appends a copy of the item; always true.
    bool add(const T& item)
    {
        m_DataCollection.push_back(item);
        return true;
    }

    /// The item at an index, counted from 0. REQUIRES: `index < size()`; nothing is checked.
    T& getAt(unsigned int index) { return m_DataCollection[index]; }

    /// The same for an array that is only read.
    const T& getAt(unsigned int index) const { return m_DataCollection[index]; }

    /// The number of items.
    std::size_t size() const { return m_DataCollection.size(); }

    /// The first item and the end, for a range-based `for`.
    auto begin() { return m_DataCollection.begin(); }
    auto end() { return m_DataCollection.end(); }
    auto begin() const { return m_DataCollection.begin(); }
    auto end() const { return m_DataCollection.end(); }

    /// Removes every item.
    void removeAll() { m_DataCollection.clear(); }

private:
    std::deque<T> m_DataCollection;
};

#endif
