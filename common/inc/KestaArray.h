#ifndef KESTA_ARRAY_H
#define KESTA_ARRAY_H

#include <cstddef>
#include <deque>
#include <initializer_list>
#include <type_traits>

/// A sequence in the order of insertion. Items are copied in; references that it hands out stay
/// valid while items are added.
///
/// Thread contract: no locking; several threads may read one array.
template <class T>
class CKestaArray
{
public:
    typedef typename std::deque<T>::value_type value_type;   ///< for algorithms and adapters
    typedef typename std::deque<T>::reference reference;
    typedef typename std::deque<T>::const_reference const_reference;
    typedef typename std::deque<T>::iterator iterator;
    typedef typename std::deque<T>::const_iterator const_iterator;
    typedef typename std::deque<T>::difference_type difference_type;
    typedef typename std::deque<T>::size_type size_type;

    CKestaArray() = default;

    /// Copies of the listed items, in this order.
    CKestaArray(std::initializer_list<T> items) : m_DataCollection(items) {}

    CKestaArray(const CKestaArray& other) = default;
    CKestaArray& operator=(const CKestaArray& other) = default;
    virtual ~CKestaArray() = default;

    /// Appends a copy of the item; always true.
    bool add(const T& item)
    {
        m_DataCollection.push_back(item);
        return true;
    }

    /// The same, as `std::back_inserter` calls it.
    void push_back(const T& item) { add(item); }

    /// The item at an index, counted from 0. REQUIRES: `index < size()`; nothing is checked.
    T& getAt(unsigned int index) { return m_DataCollection[index]; }

    /// The same for an array that is only read.
    const T& getAt(unsigned int index) const { return m_DataCollection[index]; }

    /// The same for a `std::size_t`, which is not narrowed.
    template <class TIndex, std::enable_if_t<std::is_same_v<TIndex, std::size_t>, int> = 0>
    T& getAt(TIndex index)
    {
        return m_DataCollection[index];
    }
    template <class TIndex, std::enable_if_t<std::is_same_v<TIndex, std::size_t>, int> = 0>
    const T& getAt(TIndex index) const
    {
        return m_DataCollection[index];
    }

    /// The number of items.
    std::size_t size() const { return m_DataCollection.size(); }

    /// True when there is no item.
    bool empty() const { return m_DataCollection.empty(); }

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
