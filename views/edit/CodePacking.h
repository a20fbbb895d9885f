#pragma once
// Lossless packing of a run of 16-bit codes, for what the undo history keeps
// in memory. Blocks of a few thousand codes each take the cheapest of: one
// value repeated (what a zeroed stretch leaves), a fixed polynomial
// predictor of order 0..3 with its residuals Rice-coded, or the codes as
// they are when neither pays. Recorded signals are smooth next to their
// rate, so a predictor leaves residuals of a few bits.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace aqx::views {

// Codes packed per block; the predictor runs on across blocks.
inline constexpr size_t kPackBlockCodes = 4096;

// Packs the listed columns (from 0) of `rowCount` rows that start
// `strideCodes` apart, one run per column. The rows are read block by block
// for all the columns at once, so that a row-major store is read once.
std::vector<std::vector<uint8_t>> PackColumns(const int16_t* rows, size_t rowCount, size_t strideCodes,
                                              std::span<const size_t> columns);
// Writes the runs of PackColumns back into the same columns. False when a
// run ends early or holds a block it cannot read; the blocks written by
// then stay written.
bool UnpackColumns(std::span<const std::vector<uint8_t>> packed, int16_t* rows, size_t rowCount, size_t strideCodes,
                   std::span<const size_t> columns);

// One column: packs `count` codes that stand `strideCodes` apart from `codes` on (a
// column of the row-major store: stride 32). The result is sized exactly.
std::vector<uint8_t> PackCodes(const int16_t* codes, size_t count, size_t strideCodes = 1);

// Writes the `count` codes of `packed` back, `strideCodes` apart. False when
// `packed` ends before `count` codes or holds a block it cannot read; what
// was written by then is left as it is.
bool UnpackCodes(std::span<const uint8_t> packed, int16_t* codes, size_t count, size_t strideCodes = 1);

}  // namespace aqx::views
