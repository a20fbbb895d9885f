#include "views/edit/CodePacking.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <utility>

namespace aqx::views {

namespace {

// A block starts with its kind: a predictor order 0..3, the codes as they
// are, or one code for the whole block.
constexpr int kKindBits = 3;
constexpr uint32_t kKindPlain = 4;
constexpr uint32_t kKindConstant = 5;
constexpr int kCodeBits = 16;
constexpr int kRiceParameterBits = 5;
constexpr int kMaxRiceParameter = 20;
// A quotient this long is not written in unary: the zeros are followed by
// the whole zigzag value instead, so that one spike in a quiet block costs
// a few bytes, not kilobytes.
constexpr int kEscapeZeros = 24;
// The zigzag of any order-3 residual of 16-bit codes is below 2^20.
constexpr int kEscapeValueBits = 20;
constexpr int kMaxOrder = 3;

// Most significant bit first, into bytes.
class BitWriter {
 public:
  // value < 2^bits, bits <= 32.
  void put(uint32_t value, int bits) {
    acc_ = (acc_ << bits) | value;
    held_ += bits;
    if (held_ >= 32) {
      held_ -= 32;
      const auto word = static_cast<uint32_t>(acc_ >> held_);
      bytes_.push_back(static_cast<uint8_t>(word >> 24));
      bytes_.push_back(static_cast<uint8_t>(word >> 16));
      bytes_.push_back(static_cast<uint8_t>(word >> 8));
      bytes_.push_back(static_cast<uint8_t>(word));
    }
  }

  void putRice(uint32_t value, int parameter) {
    const uint32_t quotient = value >> parameter;
    if (quotient < static_cast<uint32_t>(kEscapeZeros)) {
      put(1, static_cast<int>(quotient) + 1);
      put(value & ((1u << parameter) - 1u), parameter);
    } else {
      put(0, kEscapeZeros);
      put(value, kEscapeValueBits);
    }
  }

  // The bytes written, the last one filled with zeros, sized exactly.
  std::vector<uint8_t> finish() {
    put(0, (8 - held_ % 8) % 8);
    while (held_ >= 8) {
      held_ -= 8;
      bytes_.push_back(static_cast<uint8_t>(acc_ >> held_));
    }
    return {bytes_.begin(), bytes_.end()};
  }

 private:
  std::vector<uint8_t> bytes_;
  uint64_t acc_ = 0;
  int held_ = 0;
};

// Reads what BitWriter wrote; past the end it reads zeros and remembers it.
class BitReader {
 public:
  BitReader() = default;
  explicit BitReader(std::span<const uint8_t> in) : next_(in.data()), end_(in.data() + in.size()) {}

  uint32_t get(int bits) {
    refill();
    return take(bits);
  }

  uint32_t getRice(int parameter) {
    refill();
    // After a refill at least 57 bits are held: the zeros, their end and
    // the remainder (24 + 1 + 20) need no second one.
    const int zeros = std::min(std::countl_zero(acc_), kEscapeZeros);
    if (zeros == kEscapeZeros) {
      take(kEscapeZeros);
      return take(kEscapeValueBits);
    }
    take(zeros + 1);
    return (static_cast<uint32_t>(zeros) << parameter) | take(parameter);
  }

  // Bits past the end were read.
  bool overrun() const { return held_ < padded_; }

 private:
  void refill() {
    while (held_ <= 56) {
      uint64_t byte = 0;
      if (next_ < end_) {
        byte = *next_++;
      } else {
        padded_ += 8;
      }
      acc_ |= byte << (56 - held_);
      held_ += 8;
    }
  }

  uint32_t take(int bits) {
    if (bits == 0) return 0;
    const auto value = static_cast<uint32_t>(acc_ >> (64 - bits));
    acc_ <<= bits;
    held_ -= bits;
    return value;
  }

  const uint8_t* next_ = nullptr;
  const uint8_t* end_ = nullptr;
  uint64_t acc_ = 0;  // held bits at the top
  int held_ = 0;
  int padded_ = 0;
};

uint32_t Zigzag(int32_t v) { return (static_cast<uint32_t>(v) << 1) ^ static_cast<uint32_t>(v >> 31); }

int32_t Unzigzag(uint32_t u) { return static_cast<int32_t>(u >> 1) ^ -static_cast<int32_t>(u & 1u); }

// The last three codes before the present one, newest first. Before the
// run's first code they all stand at it (written ahead of the blocks), so
// that a run far from zero does not start with a jump.
using History = std::array<int32_t, kMaxOrder>;

int32_t Prediction(int order, const History& h) {
  switch (order) {
    case 1: return h[0];
    case 2: return 2 * h[0] - h[1];
    case 3: return 3 * h[0] - 3 * h[1] + h[2];
    default: return 0;
  }
}

void Push(History& h, int32_t code) {
  h[2] = h[1];
  h[1] = h[0];
  h[0] = code;
}

// Residuals counted by the bit width of their zigzag value.
using WidthCount = std::array<uint32_t, kEscapeValueBits + 1>;

// The best Rice parameter for residuals of these widths, and its estimated
// bits: a value of width w costs about its quotient 3/4 * 2^(w-k), its end
// and k bits. Counting widths rather than taking a mean keeps one spike in
// a quiet block from leading the choice astray.
std::pair<int, double> ChooseRiceParameter(const WidthCount& widths) {
  int best = 0;
  double bestBits = 0.0;
  for (int k = 0; k <= kMaxRiceParameter; ++k) {
    double bits = 0.0;
    for (int w = 0; w <= kEscapeValueBits; ++w) {
      const double quotient = w <= k ? 0.0 : 0.75 * std::ldexp(1.0, w - k);
      const double each = quotient < kEscapeZeros ? quotient + 1 + k : kEscapeZeros + kEscapeValueBits;
      bits += each * widths[static_cast<size_t>(w)];
    }
    if (k == 0 || bits < bestBits) {
      best = k;
      bestBits = bits;
    }
  }
  return {best, bestBits};
}

struct Choice {
  int order = 0;
  int parameter = 0;
};

// The predictor order and Rice parameter that should cost the fewest bits.
Choice ChooseCoding(std::span<const int32_t> block, History h) {
  std::array<WidthCount, kMaxOrder + 1> widths{};
  for (int32_t x : block) {
    const int32_t e1 = x - h[0];
    const int32_t e2 = e1 - (h[0] - h[1]);
    const int32_t e3 = e2 - (h[0] - 2 * h[1] + h[2]);
    ++widths[0][static_cast<size_t>(std::bit_width(Zigzag(x)))];
    ++widths[1][static_cast<size_t>(std::bit_width(Zigzag(e1)))];
    ++widths[2][static_cast<size_t>(std::bit_width(Zigzag(e2)))];
    ++widths[3][static_cast<size_t>(std::bit_width(Zigzag(e3)))];
    Push(h, x);
  }
  Choice best;
  double bestBits = 0.0;
  for (int order = 0; order <= kMaxOrder; ++order) {
    const auto [parameter, bits] = ChooseRiceParameter(widths[static_cast<size_t>(order)]);
    if (order == 0 || bits < bestBits) {
      best = {order, parameter};
      bestBits = bits;
    }
  }
  return best;
}

uint64_t RiceBits(std::span<const uint32_t> values, int parameter) {
  uint64_t bits = 0;
  for (uint32_t u : values) {
    const uint32_t quotient = u >> parameter;
    bits += quotient < static_cast<uint32_t>(kEscapeZeros) ? quotient + 1u + static_cast<uint32_t>(parameter)
                                                           : static_cast<uint32_t>(kEscapeZeros + kEscapeValueBits);
  }
  return bits;
}

void PackBlock(std::span<const int32_t> block, History& h, std::vector<uint32_t>& residuals, BitWriter& out) {
  const size_t n = block.size();
  if (std::all_of(block.begin(), block.end(), [&](int32_t x) { return x == block[0]; })) {
    out.put(kKindConstant, kKindBits);
    out.put(static_cast<uint16_t>(block[0]), kCodeBits);
    for (int32_t x : block) Push(h, x);
    return;
  }
  const auto [order, parameter] = ChooseCoding(block, h);
  residuals.resize(n);
  History after = h;
  for (size_t i = 0; i < n; ++i) {
    residuals[i] = Zigzag(block[i] - Prediction(order, after));
    Push(after, block[i]);
  }
  const uint64_t bits = RiceBits(residuals, parameter);
  if (bits + kRiceParameterBits >= static_cast<uint64_t>(n) * kCodeBits) {
    out.put(kKindPlain, kKindBits);
    for (int32_t x : block) out.put(static_cast<uint16_t>(x), kCodeBits);
  } else {
    out.put(static_cast<uint32_t>(order), kKindBits);
    out.put(static_cast<uint32_t>(parameter), kRiceParameterBits);
    for (uint32_t u : residuals) out.putRice(u, parameter);
  }
  h = after;
}

// One column's run while it is packed or unpacked block by block.
struct ColumnPacker {
  BitWriter out;
  History h{};
};

struct ColumnUnpacker {
  BitReader in;
  History h{};
};

bool UnpackBlock(ColumnUnpacker& column, std::span<int32_t> block) {
  BitReader& in = column.in;
  History& h = column.h;
  const uint32_t kind = in.get(kKindBits);
  if (kind == kKindConstant || kind == kKindPlain) {
    const bool constant = kind == kKindConstant;
    const auto value = static_cast<int16_t>(in.get(kCodeBits));
    for (size_t i = 0; i < block.size(); ++i) {
      block[i] = constant || i == 0 ? value : static_cast<int16_t>(in.get(kCodeBits));
      Push(h, block[i]);
    }
  } else if (kind <= static_cast<uint32_t>(kMaxOrder)) {
    const auto order = static_cast<int>(kind);
    const auto parameter = static_cast<int>(in.get(kRiceParameterBits));
    if (parameter > kMaxRiceParameter) return false;
    for (int32_t& x : block) {
      x = Prediction(order, h) + Unzigzag(in.getRice(parameter));
      if (x < INT16_MIN || x > INT16_MAX) return false;
      Push(h, x);
    }
  } else {
    return false;
  }
  return !in.overrun();
}

}  // namespace

std::vector<std::vector<uint8_t>> PackColumns(const int16_t* rows, size_t rowCount, size_t strideCodes,
                                              std::span<const size_t> columns) {
  const size_t width = columns.size();
  const size_t blockRows = std::min(rowCount, kPackBlockCodes);
  std::vector<ColumnPacker> packers(width);
  if (rowCount > 0) {
    for (size_t k = 0; k < width; ++k) {
      const int16_t first = rows[columns[k]];
      packers[k].h.fill(first);
      packers[k].out.put(static_cast<uint16_t>(first), kCodeBits);
    }
  }
  std::vector<int32_t> blocks(width * blockRows);
  std::vector<uint32_t> residuals;
  for (size_t start = 0; start < rowCount; start += kPackBlockCodes) {
    const size_t n = std::min(kPackBlockCodes, rowCount - start);
    for (size_t r = 0; r < n; ++r) {
      const int16_t* row = rows + (start + r) * strideCodes;
      for (size_t k = 0; k < width; ++k) blocks[k * blockRows + r] = row[columns[k]];
    }
    for (size_t k = 0; k < width; ++k)
      PackBlock(std::span<const int32_t>(blocks.data() + k * blockRows, n), packers[k].h, residuals, packers[k].out);
  }
  std::vector<std::vector<uint8_t>> packed;
  packed.reserve(width);
  for (ColumnPacker& p : packers) packed.push_back(p.out.finish());
  return packed;
}

bool UnpackColumns(std::span<const std::vector<uint8_t>> packed, int16_t* rows, size_t rowCount, size_t strideCodes,
                   std::span<const size_t> columns) {
  const size_t width = columns.size();
  if (packed.size() != width) return false;
  const size_t blockRows = std::min(rowCount, kPackBlockCodes);
  std::vector<ColumnUnpacker> unpackers(width);
  for (size_t k = 0; k < width; ++k) {
    unpackers[k].in = BitReader(packed[k]);
    if (rowCount > 0) unpackers[k].h.fill(static_cast<int16_t>(unpackers[k].in.get(kCodeBits)));
  }
  std::vector<int32_t> blocks(width * blockRows);
  for (size_t start = 0; start < rowCount; start += kPackBlockCodes) {
    const size_t n = std::min(kPackBlockCodes, rowCount - start);
    for (size_t k = 0; k < width; ++k)
      if (!UnpackBlock(unpackers[k], std::span<int32_t>(blocks.data() + k * blockRows, n))) return false;
    for (size_t r = 0; r < n; ++r) {
      int16_t* row = rows + (start + r) * strideCodes;
      for (size_t k = 0; k < width; ++k) row[columns[k]] = static_cast<int16_t>(blocks[k * blockRows + r]);
    }
  }
  return true;
}

std::vector<uint8_t> PackCodes(const int16_t* codes, size_t count, size_t strideCodes) {
  const size_t column = 0;
  return std::move(PackColumns(codes, count, strideCodes, std::span<const size_t>(&column, 1)).front());
}

bool UnpackCodes(std::span<const uint8_t> packed, int16_t* codes, size_t count, size_t strideCodes) {
  const size_t column = 0;
  const std::vector<uint8_t> run(packed.begin(), packed.end());
  return UnpackColumns(std::span<const std::vector<uint8_t>>(&run, 1), codes, count, strideCodes,
                       std::span<const size_t>(&column, 1));
}

}  // namespace aqx::views
