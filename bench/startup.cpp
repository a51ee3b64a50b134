// Start-up time of the editor: from launching the process to the first painted page of a demo
// song, on the offscreen platform. Each iteration starts `plectaro --print-startup-time` in a
// fresh home folder (so the first run's defaults are included) and waits for it to quit, which
// it does once its sounds have loaded in the background. The counters are the program's own
// figures: "own_ms" from its main() to the first paint, "sound_ms" to the sounds being ready,
// "peak_mb" the most memory it held, synthesizer included.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

extern char** environ;

namespace {

std::filesystem::path editor() {
  std::error_code ec;
  auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return exe.parent_path().parent_path() / "app" / "gui" / "plectaro";
}

struct Figures {
  double StartupMs = -1;
  double SoundMs = -1;
  double PeakMb = -1;
};

double figure(const std::string& text, const std::string& key) {
  const size_t at = text.find(key + " ");
  return at == std::string::npos ? -1 : std::atof(text.c_str() + at + key.size() + 1);
}

// Runs the editor once; its figures are negative on failure.
Figures runOnce(const std::filesystem::path& home, const std::string& song) {
  int out[2];
  if (pipe(out) != 0) return {};
  posix_spawn_file_actions_t fa;
  posix_spawn_file_actions_init(&fa);
  posix_spawn_file_actions_adddup2(&fa, out[1], 1);
  posix_spawn_file_actions_addclose(&fa, out[0]);
  const std::string exe = editor().string();
  const std::string homeArg = home.string();
  std::vector<char*> argv = {const_cast<char*>(exe.c_str()), const_cast<char*>("--home"),
                             const_cast<char*>(homeArg.c_str()),
                             const_cast<char*>("--print-startup-time"),
                             const_cast<char*>(song.c_str()), nullptr};
  pid_t pid = 0;
  const int rc = posix_spawn(&pid, exe.c_str(), &fa, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&fa);
  close(out[1]);
  std::string text;
  char buf[256];
  ssize_t n;
  while (rc == 0 && (n = read(out[0], buf, sizeof buf)) > 0) text.append(buf, static_cast<size_t>(n));
  close(out[0]);
  int status = 0;
  if (rc != 0 || waitpid(pid, &status, 0) < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return {};
  return {figure(text, "startup_ms"), figure(text, "sound_ready_ms"), figure(text, "peak_memory_mb")};
}

void BM_StartupToFirstPage(benchmark::State& state) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const std::string song = std::string(PLECTARO_SOURCE_DIR) + "/data/examples/riff.plm";
  const auto home = std::filesystem::temp_directory_path() / ("plectaro-bench-" + std::to_string(getpid()));
  double own = 0, sound = 0, peak = 0;
  for (auto _ : state) {
    std::filesystem::remove_all(home);
    const auto t0 = std::chrono::steady_clock::now();
    const Figures f = runOnce(home, song);
    const auto t1 = std::chrono::steady_clock::now();
    if (f.StartupMs < 0 || f.SoundMs < 0 || f.PeakMb < 0) {
      state.SkipWithError("the editor did not start or did not report its start-up figures");
      break;
    }
    own += f.StartupMs;
    sound += f.SoundMs;
    peak = std::max(peak, f.PeakMb);
    state.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
  }
  std::filesystem::remove_all(home);
  state.counters["own_ms"] = benchmark::Counter(own, benchmark::Counter::kAvgIterations);
  state.counters["sound_ms"] = benchmark::Counter(sound, benchmark::Counter::kAvgIterations);
  state.counters["peak_mb"] = peak;
}
BENCHMARK(BM_StartupToFirstPage)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace

BENCHMARK_MAIN();
