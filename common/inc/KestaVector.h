#ifndef KESTA_VECTOR_H
#define KESTA_VECTOR_H

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <type_traits>
#include <utility>
#include <vector>

/// A vector with removal by value. Items are copied in.
///
/// Thread contract: no locking; several threads may read one vector.
template <class T>
class CKestaVector
{
public:
    typedef typename std::vector<T>::value_type value_type;   ///< for algorithms and adapters
    typedef typename std::vector<T>::reference reference;
    typedef typename std::vector<T>::const_reference const_reference;
    typedef typename std::vector<T>::iterator iterator;
    typedef typename std::vector<T>::const_iterator const_iterator;
    typedef typename std::vector<T>::difference_type difference_type;
    typedef typename std::vector<T>::size_type size_type;

    CKestaVector() = default;

    /// Copies of the listed items, in this order.
    CKestaVector(std::initializer_list<T> items) : v(items) {}

    CKestaVector(const CKestaVector& other) = default;   // and no move: it would empty the source
    CKestaVector& operator=(const CKestaVector& other) = default;
    ~CKestaVector() = default;

    /// The number of items.
    std::size_t size() const { return v.size(); }

    /// True when there is no item.
    bool empty() const { return v.empty(); }

    /// Appends a copy of the item.
    void push_back(const T& item) { v.push_back(item); }

    /// The item at an index, counted from 0. REQUIRES: `0 <= index < size()`; nothing is checked.
    T& operator[](int index) { return v[static_cast<std::size_t>(index)]; }

    /// The same for a vector that is only read.
    const T& operator[](int index) const { return v[static_cast<std::size_t>(index)]; }

    /// The same for a `std::size_t`, which is not narrowed.
    template <class TIndex, std::enable_if_t<std::is_same_v<TIndex, std::size_t>, int> = 0>
    T& operator[](TIndex index)
    {
        return v[index];
    }
    template <class TIndex, std::enable_if_t<std::is_same_v<TIndex, std::size_t>, int> = 0>
    const T& operator[](TIndex index) const
    {
        return v[index];
    }

    /// The first item and the end, for a range-based `for`.
    auto begin() { return v.begin(); }
    auto end() { return v.end(); }
    auto begin() const { return v.begin(); }
    auto end() const { return v.end(); }

    /// Removes every item.
    void clear() { v.clear(); }

    /// Removes items equal to `item`, but skips the one that moves into the place of a removed
    /// item. Intended: of two equal neighbours only the first goes.
    ///
    ///     "x", "x", "y"   without "x":   "x", "y"
    ///     "a", "b", "a"   without "a":   "b"
    ///
    /// `item` may be an item of this vector. When a comparison throws, the items found so far are
    /// removed.
    void remove(const T& item)
    {
        const T wanted(item);
        auto itKept = v.begin();   // the kept items close up to here, in one pass
        auto itScan = v.begin();
        try
        {
            for (; itScan != v.end(); ++itScan, ++itKept)
            {
                if (*itScan == wanted && ++itScan == v.end())   // the next one is skipped
                    break;
                if (itKept != itScan)
                    *itKept = std::move(*itScan);
            }
        }
        catch (...)
        {
            v.erase(std::move(itScan, v.end(), itKept), v.end());
            throw;
        }
        v.erase(itKept, v.end());
    }

private:
    std::vector<T> v;
};

#endif
