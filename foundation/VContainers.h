// VArray and VMap: the program's own containers. Indexing past the count, or
// asking a map for a key it does not hold, throws the container's OutOfRange.
#pragma once

#include <cstddef>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

class VContainerOutOfRange : public std::out_of_range {
public:
    VContainerOutOfRange() : std::out_of_range("index out of range") {}
};

template <class T>
class VArray {
public:
    using OutOfRange = VContainerOutOfRange;

    VArray() = default;
    VArray(std::initializer_list<T> items) : items_(items) {}

    size_t GetCount() const noexcept { return items_.size(); }
    bool IsEmpty() const noexcept { return items_.empty(); }

    T& operator[](size_t index) { return items_[Checked(index)]; }
    const T& operator[](size_t index) const { return items_[Checked(index)]; }

    void Add(T item) { items_.push_back(std::move(item)); }
    void InsertAt(size_t index, T item) {
        if (index > items_.size()) throw OutOfRange();
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index), std::move(item));
    }
    void RemoveAt(size_t index) {
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(Checked(index)));
    }
    void RemoveAll() noexcept { items_.clear(); }

    auto begin() noexcept { return items_.begin(); }
    auto end() noexcept { return items_.end(); }
    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

    friend bool operator==(const VArray& a, const VArray& b) { return a.items_ == b.items_; }

private:
    size_t Checked(size_t index) const {
        if (index >= items_.size()) throw OutOfRange();
        return index;
    }

    std::vector<T> items_;
};

// Ordered by key.
template <class K, class V>
class VMap {
public:
    using OutOfRange = VContainerOutOfRange;

    size_t GetCount() const noexcept { return items_.size(); }
    bool IsEmpty() const noexcept { return items_.empty(); }
    bool Contains(const K& key) const { return items_.count(key) != 0; }

    // False, and value untouched, when the key is absent.
    bool Lookup(const K& key, V& value) const {
        const auto found = items_.find(key);
        if (found == items_.end()) return false;
        value = found->second;
        return true;
    }
    const V& At(const K& key) const {
        const auto found = items_.find(key);
        if (found == items_.end()) throw OutOfRange();
        return found->second;
    }
    void SetAt(K key, V value) { items_.insert_or_assign(std::move(key), std::move(value)); }
    bool RemoveKey(const K& key) { return items_.erase(key) != 0; }
    void RemoveAll() noexcept { items_.clear(); }

    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

private:
    std::map<K, V> items_;
};
