#pragma once
// FFTW plans made once per size and kind and reused, and aligned work memory
// leased from a small pool, so that a spectrum of a million samples costs the
// transform and not the planning or the page faults of fresh buffers.
// Planning goes through one mutex (the FFTW planner is not thread-safe);
// executing a plan on leased buffers needs no lock.

#include <fftw3.h>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace aqx::engine {

enum class FftKind : int32_t {
  RealToComplex,     // n reals -> n/2+1 complex, in place in one buffer
  ComplexToReal,     // n/2+1 complex -> n reals, in place
  ComplexForward,    // n complex -> n complex, in place
  ComplexBackward,
};

// A real transform of an even length from this many points on runs as the
// complex transform of its pairs of samples and one pass that separates the
// even samples' lines from the odd ones'. FFTW's real plan of a million
// points holds about 11 MiB of tables, the complex plan of half the length
// 2.5 MiB, where the window program with a million-sample recording needs
// about 60 MiB besides the store. Below half a million points the tables
// are small and the real plan is the faster (at 2^17 by a fifth).
inline constexpr int32_t kHalfLengthFrom = 1 << 19;

// True when PlanFor(kind, size) works at half length.
inline bool AtHalfLength(FftKind kind, int32_t size) {
  return kind == FftKind::RealToComplex && size >= kHalfLengthFrom && size % 2 == 0;
}

// A plan shared by all callers of the same kind and size.
class FftPlan {
 public:
  FftPlan(fftw_plan plan, FftKind kind, int32_t size);
  ~FftPlan();
  FftPlan(const FftPlan&) = delete;
  FftPlan& operator=(const FftPlan&) = delete;

  // In-place transforms on memory from LeaseBuffer (FFTW's alignment).
  // Real kinds: `data` holds 2*(size/2+1) doubles. Complex kinds: 2*size.
  void execute(double* data) const;
  int32_t size() const { return size_; }

 private:
  fftw_plan plan_;
  FftKind kind_;
  int32_t size_;
  // At half length: exp(-2*pi*i*k/size) as two tables (SeparateHalves).
  std::vector<double> fineTurns_;
  std::vector<double> coarseTurns_;
};

std::shared_ptr<const FftPlan> PlanFor(FftKind kind, int32_t size);

// Measured plans kept as FFTW wisdom. Plans are still asked for with
// FFTW_ESTIMATE, and FFTW then takes the measured plan where the wisdom
// holds one for the size: a long transform measured once runs a sixth
// (complex, half a million points) to a third (real) faster than the
// estimated one.
// Reads wisdom from a file (null: forgets all wisdom, back to estimated
// plans) and drops the plans made so far, so that the next call of each
// size plans again. False when unreadable.
bool ImportFftWisdom(const char* path);
// Measures the plans of the real transforms of every power of two from 16
// up to largestSize (seconds to a minute for 2^20) and writes all the wisdom
// held to `path` through a temporary renamed over it. False on failure.
bool MeasureFftWisdom(const char* path, int32_t largestSize);

// At least the doubles asked for (an idle buffer may be larger), aligned,
// returned to the pool on destruction.
class WorkBuffer {
 public:
  WorkBuffer() = default;
  explicit WorkBuffer(size_t doubles);
  ~WorkBuffer();
  WorkBuffer(WorkBuffer&& other) noexcept;
  WorkBuffer& operator=(WorkBuffer&& other) noexcept;
  WorkBuffer(const WorkBuffer&) = delete;
  WorkBuffer& operator=(const WorkBuffer&) = delete;

  double* data() { return data_; }
  const double* data() const { return data_; }
  size_t size() const { return doubles_; }
  std::complex<double>* complexData() { return reinterpret_cast<std::complex<double>*>(data_); }

 private:
  double* data_ = nullptr;
  size_t doubles_ = 0;
};

// Doubles needed for an in-place real transform of n points.
inline size_t RealTransformDoubles(int32_t n) { return 2 * (static_cast<size_t>(n) / 2 + 1); }

}  // namespace aqx::engine
