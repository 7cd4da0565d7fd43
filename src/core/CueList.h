#pragma once

#include "core/CaptionCue.h"

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <vector>

namespace cuewright {

// The cues of a document: an ordered list with value semantics whose storage is shared
// between copies. Cues sit in chunks that copies share; a change copies only the chunk it
// touches, so the editor's undo snapshots of a long document stay cheap.
// Not thread-safe for concurrent writes; copies may be handed to other threads freely.
class CueList {
    struct Chunk;
    struct Index;

public:
    using value_type = CaptionCue;
    using size_type = std::size_t;

    class const_iterator {
    public:
        using iterator_category = std::random_access_iterator_tag;
        using value_type = CaptionCue;
        using difference_type = std::ptrdiff_t;
        using pointer = const CaptionCue*;
        using reference = const CaptionCue&;

        const_iterator() = default;
        reference operator*() const;
        pointer operator->() const { return &**this; }
        reference operator[](difference_type n) const { return *(*this + n); }
        const_iterator& operator++();
        const_iterator operator++(int)
        {
            auto copy = *this;
            ++*this;
            return copy;
        }
        const_iterator& operator--() { return *this -= 1; }
        const_iterator operator--(int)
        {
            auto copy = *this;
            --*this;
            return copy;
        }
        const_iterator& operator+=(difference_type n);
        const_iterator& operator-=(difference_type n) { return *this += -n; }
        friend const_iterator operator+(const_iterator it, difference_type n) { return it += n; }
        friend const_iterator operator+(difference_type n, const_iterator it) { return it += n; }
        friend const_iterator operator-(const_iterator it, difference_type n) { return it -= n; }
        friend difference_type operator-(const const_iterator& a, const const_iterator& b)
        {
            return static_cast<difference_type>(a.m_position) - static_cast<difference_type>(b.m_position);
        }
        friend bool operator==(const const_iterator& a, const const_iterator& b) { return a.m_position == b.m_position; }
        friend auto operator<=>(const const_iterator& a, const const_iterator& b) { return a.m_position <=> b.m_position; }

    private:
        friend class CueList;
        const_iterator(const Index* index, std::size_t position);
        const Index* m_index = nullptr;
        std::size_t m_position = 0; // index in the list
        std::size_t m_chunk = 0;
        std::size_t m_offset = 0;
    };
    using iterator = const_iterator;

    CueList();
    CueList(std::vector<CaptionCue> cues);
    CueList(std::initializer_list<CaptionCue> cues);

    size_type size() const;
    bool empty() const { return size() == 0; }
    const CaptionCue& operator[](size_type i) const;
    const CaptionCue& front() const { return (*this)[0]; }
    const CaptionCue& back() const { return (*this)[size() - 1]; }
    const_iterator begin() const;
    const_iterator end() const;

    // Write access to one cue; copies its chunk first when another list shares it.
    CaptionCue& mutableAt(size_type i);
    void set(size_type i, CaptionCue cue) { mutableAt(i) = std::move(cue); }
    void push_back(CaptionCue cue) { insert(size(), std::move(cue)); }
    void insert(size_type i, CaptionCue cue);
    void erase(size_type i);
    void clear();

    std::vector<CaptionCue> toVector() const;

    friend bool operator==(const CueList& a, const CueList& b);

private:
    Index& mutableIndex();
    std::shared_ptr<const Index> m_index;
};

} // namespace cuewright
