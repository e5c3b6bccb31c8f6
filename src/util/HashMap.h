#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "util/Assert.h"
#include "util/String.h"

namespace util {

// The bucket count for a table of at least `n` buckets: 3, or the next prime at or above n.
size_t BucketCountFor(size_t n);

// h = h * 65599 + signed char, over the whole text, in 32 bits.
struct StringHasher {
    uint32_t operator()(const String& text) const;
};

// A hash table of buckets that are vectors of pairs, growing to the next prime above twice its size when
// it holds one entry per bucket. It never shrinks; clear keeps the buckets and their memory.
template <class Key, class Value, class Hasher>
class HashMap {
  public:
    using Entry = std::pair<Key, Value>;
    using Bucket = std::vector<Entry>;

    template <class Map, class EntryRef>
    class BasicIterator {
      public:
        BasicIterator(Map* map, size_t bucket) : m_map(map), m_bucket(bucket) { SkipEmpty(); }
        EntryRef& operator*() const { return m_map->m_table[m_bucket][m_index]; }
        EntryRef* operator->() const { return &**this; }
        BasicIterator& operator++() {
            ++m_index;
            SkipEmpty();
            return *this;
        }
        bool operator==(const BasicIterator& rhs) const {
            const BasicIterator& lhs = *this;
            DATA_ASSERTION(&lhs.m_map->m_table == &rhs.m_map->m_table);
            return lhs.m_bucket == rhs.m_bucket && lhs.m_index == rhs.m_index;
        }
        bool operator!=(const BasicIterator& rhs) const { return !(*this == rhs); }

      private:
        void SkipEmpty() {
            while (m_bucket < m_map->m_table.size() && m_index >= m_map->m_table[m_bucket].size()) {
                ++m_bucket;
                m_index = 0;
            }
        }

        Map* m_map;
        size_t m_bucket;
        size_t m_index = 0;
    };
    using iterator = BasicIterator<HashMap, Entry>;
    using const_iterator = BasicIterator<const HashMap, const Entry>;

    explicit HashMap(size_t buckets = 0) : m_table(BucketCountFor(buckets)) {}

    // The value under `key`, or null.
    Value* Find(const Key& key) {
        for (Entry& entry : m_table[BucketOf(key)]) {
            if (entry.first == key) return &entry.second;
        }
        return nullptr;
    }
    const Value* Find(const Key& key) const { return const_cast<HashMap*>(this)->Find(key); }

    // The value under `key`, inserted with Value() when missing.
    Value& operator[](const Key& key) {
        if (Value* const found = Find(key)) return *found;
        GrowIfFull();
        Bucket& bucket = m_table[BucketOf(key)];
        bucket.emplace_back(key, Value());
        ++m_size;
        return bucket.back().second;
    }

    void clear() {
        for (Bucket& bucket : m_table) bucket.clear();
        m_size = 0;
    }

    uint32_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    size_t GetBucketCount() const { return m_table.size(); }
    const std::vector<Bucket>& GetBuckets() const { return m_table; }

    iterator begin() { return iterator(this, 0); }
    iterator end() { return iterator(this, m_table.size()); }
    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, m_table.size()); }

  private:
    size_t BucketOf(const Key& key) const { return m_hasher(key) % m_table.size(); }

    void GrowIfFull() {
        if (m_size < m_table.size()) return;
        const size_t doubled = m_table.size() * 2 + 1;
        if (doubled <= m_table.size()) return;
        std::vector<Bucket> grown(BucketCountFor(doubled));
        m_table.swap(grown);
        for (Bucket& bucket : grown) {
            for (Entry& entry : bucket) m_table[BucketOf(entry.first)].push_back(std::move(entry));
        }
    }

    Hasher m_hasher;
    std::vector<Bucket> m_table;
    uint32_t m_size = 0;  // entries
};

}  // namespace util
