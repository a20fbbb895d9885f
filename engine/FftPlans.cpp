#include "engine/FftPlans.h"

#include "engine/EngineCommon.h"
#include "engine/SpectrumKernel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <list>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace aqx::engine {
namespace {

// Plans of a few dozen sizes cover the selections a user makes in a session;
// the least recently used go when more are asked for.
constexpr size_t kMaxPlans = 48;
// Idle buffers kept for reuse, and the bytes they may hold together: a
// million-sample transform's buffer (8 MiB), which a refresh needs again at
// once. Given back and taken anew, its pages would be faulted in again on
// every refresh, and on a virtual machine that costs more than the transform.
constexpr size_t kMaxIdleBuffers = 8;
constexpr size_t kMaxIdleBytes = size_t{9} << 20;
// An idle buffer serves a request of down to 1/kMaxLeaseFactor of its size.
constexpr size_t kMaxLeaseFactor = 8;

// The C interface carries no context, so the plan cache and the buffer pool
// are the library's one process-wide state, guarded by their own mutexes.
struct FftState {
  std::mutex cacheMutex;    // plans map and its use order
  std::mutex plannerMutex;  // every call into the FFTW planner
  std::map<std::pair<FftKind, int32_t>, std::shared_ptr<const FftPlan>> plans;
  std::list<std::pair<FftKind, int32_t>> useOrder;  // most recent at the front

  std::mutex poolMutex;
  std::vector<std::pair<double*, size_t>> idle;  // oldest first
  size_t idleBytes = 0;

  ~FftState() {
    plans.clear();
    for (auto& b : idle) fftw_free(b.first);
  }
};

FftState g_fft;

size_t DoublesFor(FftKind kind, int32_t size) {
  const bool real = kind == FftKind::RealToComplex || kind == FftKind::ComplexToReal;
  return real ? RealTransformDoubles(size) : 2 * static_cast<size_t>(size);
}

// The forward real transform's plan, at half length (AtHalfLength) the
// complex plan of the sample pairs; `probe` holds RealTransformDoubles(size).
fftw_plan PlanRealForward(int32_t size, double* probe, unsigned flags) {
  auto* probeComplex = reinterpret_cast<fftw_complex*>(probe);
  return AtHalfLength(FftKind::RealToComplex, size)
             ? fftw_plan_dft_1d(size / 2, probeComplex, probeComplex, FFTW_FORWARD, flags)
             : fftw_plan_dft_r2c_1d(size, probe, probeComplex, flags);
}

fftw_plan MakePlan(FftKind kind, int32_t size) {
  std::lock_guard<std::mutex> lock(g_fft.plannerMutex);
  // FFTW_ESTIMATE never writes the arrays while planning; they only fix the
  // alignment and in-placeness that later executions must share.
  double* probe = static_cast<double*>(fftw_malloc(sizeof(double) * DoublesFor(kind, size)));
  if (probe == nullptr) return nullptr;
  auto* probeComplex = reinterpret_cast<fftw_complex*>(probe);
  fftw_plan plan = nullptr;
  switch (kind) {
    case FftKind::RealToComplex:
      plan = PlanRealForward(size, probe, FFTW_ESTIMATE);
      break;
    case FftKind::ComplexToReal:
      plan = fftw_plan_dft_c2r_1d(size, probeComplex, probe, FFTW_ESTIMATE);
      break;
    case FftKind::ComplexForward:
      plan = fftw_plan_dft_1d(size, probeComplex, probeComplex, FFTW_FORWARD, FFTW_ESTIMATE);
      break;
    case FftKind::ComplexBackward:
      plan = fftw_plan_dft_1d(size, probeComplex, probeComplex, FFTW_BACKWARD, FFTW_ESTIMATE);
      break;
  }
  fftw_free(probe);
  return plan;
}

// exp(-2*pi*i*k*stride/size) for k in [0, count), interleaved cos, sin.
std::vector<double> Turns(int32_t size, int32_t stride, int32_t count) {
  std::vector<double> turns(2 * static_cast<size_t>(count));
  for (int32_t k = 0; k < count; ++k) {
    const double angle = -2.0 * kPi * static_cast<double>(static_cast<int64_t>(k) * stride) / size;
    turns[2 * static_cast<size_t>(k)] = std::cos(angle);
    turns[2 * static_cast<size_t>(k) + 1] = std::sin(angle);
  }
  return turns;
}

// Takes the oldest idle buffers out of the pool until it keeps its limits
// with `comingBytes` more on their way back; the caller frees them outside
// the lock. Under poolMutex.
std::vector<double*> TakeOldestIdle(size_t comingBytes) {
  std::vector<double*> taken;
  while (!g_fft.idle.empty() &&
         (g_fft.idle.size() > kMaxIdleBuffers || g_fft.idleBytes + comingBytes > kMaxIdleBytes)) {
    taken.push_back(g_fft.idle.front().first);
    g_fft.idleBytes -= g_fft.idle.front().second * sizeof(double);
    g_fft.idle.erase(g_fft.idle.begin());
  }
  return taken;
}

}  // namespace

FftPlan::FftPlan(fftw_plan plan, FftKind kind, int32_t size) : plan_(plan), kind_(kind), size_(size) {
  if (!AtHalfLength(kind, size)) return;
  fineTurns_ = Turns(size, 1, kFineTurns);
  coarseTurns_ = Turns(size, kFineTurns, size / 4 / kFineTurns + 1);
}

FftPlan::~FftPlan() {
  std::lock_guard<std::mutex> lock(g_fft.plannerMutex);
  fftw_destroy_plan(plan_);
}

void FftPlan::execute(double* data) const {
  auto* c = reinterpret_cast<fftw_complex*>(data);
  switch (kind_) {
    case FftKind::RealToComplex:
      if (fineTurns_.empty()) {
        fftw_execute_dft_r2c(plan_, data, c);
      } else {
        fftw_execute_dft(plan_, c, c);
        SeparateHalves(data, size_, fineTurns_.data(), coarseTurns_.data());
      }
      break;
    case FftKind::ComplexToReal:
      fftw_execute_dft_c2r(plan_, c, data);
      break;
    case FftKind::ComplexForward:
    case FftKind::ComplexBackward:
      fftw_execute_dft(plan_, c, c);
      break;
  }
}

std::shared_ptr<const FftPlan> PlanFor(FftKind kind, int32_t size) {
  if (size < 1) return nullptr;
  const auto key = std::make_pair(kind, size);
  std::lock_guard<std::mutex> lock(g_fft.cacheMutex);
  auto found = g_fft.plans.find(key);
  if (found != g_fft.plans.end()) {
    g_fft.useOrder.remove(key);
    g_fft.useOrder.push_front(key);
    return found->second;
  }
  fftw_plan raw = MakePlan(kind, size);
  if (raw == nullptr) return nullptr;
  auto plan = std::make_shared<const FftPlan>(raw, kind, size);
  g_fft.plans.emplace(key, plan);
  g_fft.useOrder.push_front(key);
  while (g_fft.plans.size() > kMaxPlans) {
    // Callers still holding an evicted plan keep it alive until they finish.
    g_fft.plans.erase(g_fft.useOrder.back());
    g_fft.useOrder.pop_back();
  }
  return plan;
}

bool ImportFftWisdom(const char* path) {
  std::map<std::pair<FftKind, int32_t>, std::shared_ptr<const FftPlan>> dropped;
  {
    std::lock_guard<std::mutex> cacheLock(g_fft.cacheMutex);
    {
      std::lock_guard<std::mutex> plannerLock(g_fft.plannerMutex);
      if (path == nullptr) {
        fftw_forget_wisdom();
      } else if (fftw_import_wisdom_from_filename(path) == 0) {
        return false;
      }
    }
    dropped.swap(g_fft.plans);
    g_fft.useOrder.clear();
  }
  // The dropped plans are destroyed here, outside the cache's lock (their
  // destructor takes the planner's).
  return true;
}

bool MeasureFftWisdom(const char* path, int32_t largestSize) {
  if (path == nullptr) return false;
  for (int32_t size = 16; size <= largestSize && size > 0; size *= 2) {
    // Each size under the lock on its own, so that other threads' plans
    // wait for one measurement at most.
    std::lock_guard<std::mutex> lock(g_fft.plannerMutex);
    WorkBuffer probe(RealTransformDoubles(size));
    if (probe.data() == nullptr) return false;
    fftw_plan plan = PlanRealForward(size, probe.data(), FFTW_MEASURE);
    if (plan == nullptr) return false;
    fftw_destroy_plan(plan);
  }
  const std::string temporary = std::string(path) + ".part";
  std::lock_guard<std::mutex> lock(g_fft.plannerMutex);
  if (fftw_export_wisdom_to_filename(temporary.c_str()) == 0) {
    std::remove(temporary.c_str());
    return false;
  }
  if (std::rename(temporary.c_str(), path) != 0) {
    std::remove(temporary.c_str());
    return false;
  }
  return true;
}

WorkBuffer::WorkBuffer(size_t doubles) : doubles_(std::max<size_t>(doubles, 2)) {
  std::vector<double*> release;
  {
    // The smallest idle buffer that holds the request, up to eight times its
    // size: a channel's band codes (2 MiB at a million samples) then take
    // the idle transform buffer, and a small request never takes that.
    std::lock_guard<std::mutex> lock(g_fft.poolMutex);
    auto best = g_fft.idle.end();
    for (auto it = g_fft.idle.begin(); it != g_fft.idle.end(); ++it) {
      if (it->second >= doubles_ && it->second / kMaxLeaseFactor <= doubles_ &&
          (best == g_fft.idle.end() || it->second < best->second)) {
        best = it;
      }
    }
    if (best != g_fft.idle.end()) {
      data_ = best->first;
      doubles_ = best->second;
      g_fft.idleBytes -= best->second * sizeof(double);
      g_fft.idle.erase(best);
      return;
    }
    // Idle buffers that this one would push out when it comes back go
    // now, before it is allocated, so that they never sit beside it.
    release = TakeOldestIdle(doubles_ * sizeof(double));
  }
  for (double* p : release) fftw_free(p);
  data_ = static_cast<double*>(fftw_malloc(sizeof(double) * doubles_));
  if (data_ == nullptr) doubles_ = 0;
}

WorkBuffer::~WorkBuffer() {
  if (data_ == nullptr) return;
  std::vector<double*> release;
  {
    std::lock_guard<std::mutex> lock(g_fft.poolMutex);
    g_fft.idle.emplace_back(data_, doubles_);
    g_fft.idleBytes += doubles_ * sizeof(double);
    release = TakeOldestIdle(0);
  }
  for (double* p : release) fftw_free(p);
}

WorkBuffer::WorkBuffer(WorkBuffer&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), doubles_(std::exchange(other.doubles_, 0)) {}

WorkBuffer& WorkBuffer::operator=(WorkBuffer&& other) noexcept {
  if (this != &other) {
    WorkBuffer old(std::move(*this));
    data_ = std::exchange(other.data_, nullptr);
    doubles_ = std::exchange(other.doubles_, 0);
  }
  return *this;
}

}  // namespace aqx::engine
