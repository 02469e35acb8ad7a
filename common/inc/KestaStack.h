#ifndef KESTA_STACK_H
#define KESTA_STACK_H

#include <cstddef>
#include <deque>
#include <stack>
#include <utility>

/// Last in, first out. Items are copied in and out.
///
/// Thread contract: no locking; several threads may read one stack.
template <class T>
class CKestaStack
{
public:
    typedef T value_type;   ///< for algorithms and adapters

    CKestaStack() = default;
    CKestaStack(const CKestaStack& other) = default;
    CKestaStack& operator=(const CKestaStack& other) = default;
    virtual ~CKestaStack() = default;

    /// Puts a copy of the item on top.
    void push(T item) { s.push(std::move(item)); }

    /// A copy of the top item. REQUIRES: the stack is not empty; nothing is checked.
    T top() const { return s.top(); }

    /// Drops the top item. REQUIRES: the stack is not empty; nothing is checked.
    void pop() { s.pop(); }

    /// Drops every item.
    void removeAll()
    {
        for (std::size_t ulLeft = s.size(); ulLeft > 0; --ulLeft)
            s.pop();
    }

    /// The number of items.
    std::size_t size() const { return s.size(); }

    /// True when there is no item.
    bool isEmpty() const { return s.empty(); }
    bool empty() const { return s.empty(); }

private:
    std::stack<T, std::deque<T>> s;
};

#endif
