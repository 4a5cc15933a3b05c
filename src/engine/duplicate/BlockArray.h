#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace velmora {

// An array that grows by fixed blocks: growing never copies what is there
// (a vector that doubles holds its old and its new storage at once for a
// moment, and up to half of the new one unused), and at most one block is
// partly used.
template <typename T, size_t kBlock>
class BlockArray {
public:
    void push_back(const T& value) {
        if (m_size == m_blocks.size() * kBlock) m_blocks.push_back(std::make_unique_for_overwrite<T[]>(kBlock));
        m_blocks[m_size / kBlock][m_size % kBlock] = value;
        ++m_size;
    }
    // Appends `count` elements (at most kBlock) in one block, leaving the
    // rest of the last block unused if they do not fit there; answers the
    // index of the first.
    size_t appendInOneBlock(const T* values, size_t count) {
        if (m_size % kBlock + count > kBlock && m_size % kBlock != 0) m_size = m_blocks.size() * kBlock;
        const size_t first = m_size;
        for (size_t i = 0; i < count; ++i) push_back(values[i]);
        return first;
    }
    // Keeps the first `count` elements and frees the blocks beyond them.
    void truncate(size_t count) {
        m_size = count;
        m_blocks.resize((count + kBlock - 1) / kBlock);
        m_blocks.shrink_to_fit();
    }

    T& operator[](size_t i) { return m_blocks[i / kBlock][i % kBlock]; }
    const T& operator[](size_t i) const { return m_blocks[i / kBlock][i % kBlock]; }
    // The address of element i, valid for as many elements as lie in its block.
    const T* at(size_t i) const { return &m_blocks[i / kBlock][i % kBlock]; }
    size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    size_t capacity() const { return m_blocks.size() * kBlock; }

private:
    std::vector<std::unique_ptr<T[]>> m_blocks;
    size_t m_size = 0;
};

}  // namespace velmora
