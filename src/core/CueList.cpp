#include "core/CueList.h"

#include <algorithm>
#include <cassert>

namespace cuewright {

namespace {
constexpr std::size_t chunkSize = 64;
constexpr std::size_t maximumChunkSize = 2 * chunkSize;
} // namespace

struct CueList::Chunk {
    std::vector<CaptionCue> cues;
};

struct CueList::Index {
    std::vector<std::shared_ptr<Chunk>> chunks;
    std::vector<std::size_t> starts; // position of each chunk's first cue
    std::size_t size = 0;

    void recount(std::size_t fromChunk)
    {
        starts.resize(chunks.size());
        std::size_t position = fromChunk == 0 ? 0 : starts[fromChunk - 1] + chunks[fromChunk - 1]->cues.size();
        for (std::size_t k = fromChunk; k < chunks.size(); ++k) {
            starts[k] = position;
            position += chunks[k]->cues.size();
        }
        size = position;
    }

    // Chunk holding position i (i < size), or the last chunk for i == size.
    std::size_t chunkOf(std::size_t i) const
    {
        auto it = std::upper_bound(starts.begin(), starts.end(), i);
        return it == starts.begin() ? 0 : static_cast<std::size_t>(it - starts.begin()) - 1;
    }
};

CueList::CueList()
    : m_index(std::make_shared<const Index>())
{
}

CueList::CueList(std::vector<CaptionCue> cues)
{
    auto index = std::make_shared<Index>();
    for (std::size_t i = 0; i < cues.size(); i += chunkSize) {
        auto chunk = std::make_shared<Chunk>();
        const auto last = std::min(cues.size(), i + chunkSize);
        chunk->cues.assign(std::make_move_iterator(cues.begin() + static_cast<std::ptrdiff_t>(i)),
                           std::make_move_iterator(cues.begin() + static_cast<std::ptrdiff_t>(last)));
        index->chunks.push_back(std::move(chunk));
    }
    index->recount(0);
    m_index = std::move(index);
}

CueList::CueList(std::initializer_list<CaptionCue> cues)
    : CueList(std::vector<CaptionCue>(cues))
{
}

CueList::size_type CueList::size() const
{
    return m_index->size;
}

const CaptionCue& CueList::operator[](size_type i) const
{
    assert(i < size());
    const auto k = m_index->chunkOf(i);
    return m_index->chunks[k]->cues[i - m_index->starts[k]];
}

CueList::const_iterator CueList::begin() const
{
    return const_iterator(m_index.get(), 0);
}

CueList::const_iterator CueList::end() const
{
    return const_iterator(m_index.get(), size());
}

CueList::Index& CueList::mutableIndex()
{
    if (m_index.use_count() != 1)
        m_index = std::make_shared<const Index>(*m_index);
    return const_cast<Index&>(*m_index);
}

CaptionCue& CueList::mutableAt(size_type i)
{
    assert(i < size());
    auto& index = mutableIndex();
    const auto k = index.chunkOf(i);
    auto& chunk = index.chunks[k];
    if (chunk.use_count() != 1)
        chunk = std::make_shared<Chunk>(*chunk);
    return chunk->cues[i - index.starts[k]];
}

void CueList::insert(size_type i, CaptionCue cue)
{
    assert(i <= size());
    auto& index = mutableIndex();
    if (index.chunks.empty()) {
        index.chunks.push_back(std::make_shared<Chunk>());
        index.recount(0);
    }
    const auto k = index.chunkOf(i);
    auto& chunk = index.chunks[k];
    if (chunk.use_count() != 1)
        chunk = std::make_shared<Chunk>(*chunk);
    auto& cues = chunk->cues;
    cues.insert(cues.begin() + static_cast<std::ptrdiff_t>(i - index.starts[k]), std::move(cue));
    if (cues.size() > maximumChunkSize) {
        auto tail = std::make_shared<Chunk>();
        tail->cues.assign(std::make_move_iterator(cues.begin() + chunkSize), std::make_move_iterator(cues.end()));
        cues.resize(chunkSize);
        index.chunks.insert(index.chunks.begin() + static_cast<std::ptrdiff_t>(k) + 1, std::move(tail));
    }
    index.recount(k);
}

void CueList::erase(size_type i)
{
    assert(i < size());
    auto& index = mutableIndex();
    const auto k = index.chunkOf(i);
    auto& chunk = index.chunks[k];
    if (chunk->cues.size() == 1) {
        index.chunks.erase(index.chunks.begin() + static_cast<std::ptrdiff_t>(k));
    } else {
        if (chunk.use_count() != 1)
            chunk = std::make_shared<Chunk>(*chunk);
        chunk->cues.erase(chunk->cues.begin() + static_cast<std::ptrdiff_t>(i - index.starts[k]));
    }
    index.recount(k);
}

void CueList::clear()
{
    m_index = std::make_shared<const Index>();
}

std::vector<CaptionCue> CueList::toVector() const
{
    std::vector<CaptionCue> result;
    result.reserve(size());
    for (const auto& chunk : m_index->chunks)
        result.insert(result.end(), chunk->cues.begin(), chunk->cues.end());
    return result;
}

bool operator==(const CueList& a, const CueList& b)
{
    if (a.size() != b.size())
        return false;
    if (a.m_index == b.m_index)
        return true;
    const auto& ia = *a.m_index;
    const auto& ib = *b.m_index;
    // Chunks shared by both lists at the same position are equal without a look inside.
    std::size_t ka = 0;
    std::size_t kb = 0;
    std::size_t oa = 0;
    std::size_t ob = 0;
    while (ka < ia.chunks.size() && kb < ib.chunks.size()) {
        const auto& ca = ia.chunks[ka]->cues;
        const auto& cb = ib.chunks[kb]->cues;
        if (oa == 0 && ob == 0 && ia.chunks[ka] == ib.chunks[kb]) {
            ++ka;
            ++kb;
            continue;
        }
        if (!(ca[oa] == cb[ob]))
            return false;
        if (++oa == ca.size()) {
            oa = 0;
            ++ka;
        }
        if (++ob == cb.size()) {
            ob = 0;
            ++kb;
        }
    }
    return true;
}

CueList::const_iterator::const_iterator(const Index* index, std::size_t position)
    : m_index(index)
    , m_position(position)
{
    if (position >= index->size) {
        m_chunk = index->chunks.size();
        m_offset = 0;
    } else {
        m_chunk = index->chunkOf(position);
        m_offset = position - index->starts[m_chunk];
    }
}

CueList::const_iterator::reference CueList::const_iterator::operator*() const
{
    return m_index->chunks[m_chunk]->cues[m_offset];
}

CueList::const_iterator& CueList::const_iterator::operator++()
{
    ++m_position;
    if (++m_offset == m_index->chunks[m_chunk]->cues.size()) {
        ++m_chunk;
        m_offset = 0;
    }
    return *this;
}

CueList::const_iterator& CueList::const_iterator::operator+=(difference_type n)
{
    *this = const_iterator(m_index, static_cast<std::size_t>(static_cast<difference_type>(m_position) + n));
    return *this;
}

} // namespace cuewright
