#pragma once
// A benchmark row that times the program's call and its baseline in the
// same run, alternately, so that what the other users of the machine do
// falls on both alike. Each side is timed in process CPU time (all threads
// of the process, so a call that hands half its work to a helper thread is
// charged for it) and in wall time; the row reports the medians and their
// ratios:
//   ours_cpu_ms, base_cpu_ms, cpu_ratio, ours_wall_ms, base_wall_ms, wall_ratio
// The time column of the row is the program's wall time.

#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <string>
#include <vector>

namespace aqx::bench {

inline double ProcessCpuSeconds() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

inline double WallSeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

inline double Median(std::vector<double> v) {
  if (v.empty()) return 0.0;
  std::sort(v.begin(), v.end());
  const size_t m = v.size() / 2;
  return v.size() % 2 == 1 ? v[m] : 0.5 * (v[m - 1] + v[m]);
}

// Per-call timings of one side.
struct Timings {
  std::vector<double> cpu;
  std::vector<double> wall;
  std::vector<double> peakKiB;  // only for child processes

  template <class F>
  void measure(const F& call) {
    const double c0 = ProcessCpuSeconds();
    const double w0 = WallSeconds();
    call();
    wall.push_back(WallSeconds() - w0);
    cpu.push_back(ProcessCpuSeconds() - c0);
  }
};

inline void Report(benchmark::State& state, const Timings& ours, const Timings& base) {
  const double oc = Median(ours.cpu), bc = Median(base.cpu);
  const double ow = Median(ours.wall), bw = Median(base.wall);
  state.counters["ours_cpu_ms"] = oc * 1e3;
  state.counters["base_cpu_ms"] = bc * 1e3;
  state.counters["cpu_ratio"] = bc > 0.0 ? oc / bc : 0.0;
  state.counters["ours_wall_ms"] = ow * 1e3;
  state.counters["base_wall_ms"] = bw * 1e3;
  state.counters["wall_ratio"] = bw > 0.0 ? ow / bw : 0.0;
  if (!ours.peakKiB.empty()) {
    const double op = *std::max_element(ours.peakKiB.begin(), ours.peakKiB.end());
    const double bp = base.peakKiB.empty() ? 0.0 : *std::max_element(base.peakKiB.begin(), base.peakKiB.end());
    state.counters["ours_peak_MiB"] = op / 1024.0;
    if (bp > 0.0) state.counters["base_peak_MiB"] = bp / 1024.0;
  }
}

// Runs ours and the baseline alternately once per iteration (the order
// switching each time) and reports both.
template <class Ours, class Base>
void Compare(benchmark::State& state, const Ours& ours, const Base& base) {
  Timings o, b;
  bool baseFirst = false;
  for (auto _ : state) {
    if (baseFirst) b.measure(base);
    o.measure(ours);
    if (!baseFirst) b.measure(base);
    baseFirst = !baseFirst;
    state.SetIterationTime(o.wall.back());
  }
  Report(state, o, b);
}

// A child process's CPU time (user + system), wall time and peak resident
// memory. `args[0]` is the program; standard output and error go to
// /dev/null unless told otherwise. A child still running after
// `killAfterSeconds` (> 0) is ended with SIGTERM. False when it could not
// run or ended other than with status 0 (or by the SIGTERM asked for).
struct ChildRun {
  double cpuSeconds = 0.0;
  double wallSeconds = 0.0;
  double peakKiB = 0.0;
  bool ok = false;
};

inline ChildRun RunChild(const std::vector<std::string>& args, double killAfterSeconds = 0.0,
                         const std::vector<std::string>& environment = {}) {
  ChildRun r;
  std::vector<char*> argv;
  for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
  argv.push_back(nullptr);
  const double w0 = WallSeconds();
  const pid_t pid = fork();
  if (pid < 0) return r;
  if (pid == 0) {
    for (const std::string& e : environment) putenv(const_cast<char*>(e.c_str()));
    freopen("/dev/null", "w", stdout);
    freopen("/dev/null", "w", stderr);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  bool killed = false;
  if (killAfterSeconds > 0.0) {
    for (;;) {
      const pid_t done = wait4(pid, &status, WNOHANG, &usage);
      if (done == pid) break;
      if (WallSeconds() - w0 >= killAfterSeconds && !killed) {
        kill(pid, SIGTERM);
        killed = true;
      }
      usleep(5000);
    }
  } else {
    wait4(pid, &status, 0, &usage);
  }
  r.wallSeconds = WallSeconds() - w0;
  r.cpuSeconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                 static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
  r.peakKiB = static_cast<double>(usage.ru_maxrss);
  r.ok = (WIFEXITED(status) && WEXITSTATUS(status) == 0) || (killed && WIFSIGNALED(status));
  return r;
}

inline void Record(Timings& t, const ChildRun& r) {
  t.cpu.push_back(r.cpuSeconds);
  t.wall.push_back(r.wallSeconds);
  t.peakKiB.push_back(r.peakKiB);
}

}  // namespace aqx::bench
