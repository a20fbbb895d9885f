#pragma once
// The move between the sample-major store and the channel-major sample area
// of a data file, one block of samples of all used channels at a time.
//
// Each channel's part of a block lies kBlockStride samples after the one
// before. A stride of a power of two (32 KiB) would put the same sample of
// every channel on the same cache sets, and a move over all channels would
// then evict what it has just touched; 32 samples more spread them. Rows go
// in tiles short enough that the tile's rows stay in the first-level cache
// while each channel's part of them is moved.

#include "core/AppState.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>

namespace aqx {

inline constexpr int kSamplesPerBlock = 16384;
inline constexpr size_t kBlockStride = kSamplesPerBlock + 32;

namespace detail {
inline constexpr int kTileRows = 64;

inline int16_t SwappedIfBig(int16_t v) {
  if constexpr (std::endian::native == std::endian::big) {
    const auto u = static_cast<uint16_t>(v);
    return static_cast<int16_t>(static_cast<uint16_t>((u >> 8) | (u << 8)));
  }
  return v;
}
}  // namespace detail

// Rows firstRow..firstRow+count-1 (from 0) of the store's columns (from 0)
// into the block, little-endian as the file holds them.
inline void GatherChannels(const int16_t* store, int firstRow, int count, std::span<const size_t> columns,
                           int16_t* block) {
  for (int tile = 0; tile < count; tile += detail::kTileRows) {
    const int tileEnd = std::min(count, tile + detail::kTileRows);
    const int16_t* rows = store + static_cast<size_t>(firstRow + tile) * SampleStore::kColumns;
    for (size_t k = 0; k < columns.size(); ++k) {
      const int16_t* source = rows + columns[k];
      int16_t* target = block + k * kBlockStride + static_cast<size_t>(tile);
      for (int i = 0; i < tileEnd - tile; ++i)
        target[i] = detail::SwappedIfBig(source[static_cast<size_t>(i) * SampleStore::kColumns]);
    }
  }
}

// The reverse: a block read from the file into those rows of the store.
inline void SpreadChannels(const int16_t* block, int firstRow, int count, std::span<const size_t> columns,
                           int16_t* store) {
  for (int tile = 0; tile < count; tile += detail::kTileRows) {
    const int tileEnd = std::min(count, tile + detail::kTileRows);
    int16_t* rows = store + static_cast<size_t>(firstRow + tile) * SampleStore::kColumns;
    for (size_t k = 0; k < columns.size(); ++k) {
      const int16_t* source = block + k * kBlockStride + static_cast<size_t>(tile);
      int16_t* target = rows + columns[k];
      for (int i = 0; i < tileEnd - tile; ++i)
        target[static_cast<size_t>(i) * SampleStore::kColumns] = detail::SwappedIfBig(source[i]);
    }
  }
}

}  // namespace aqx
