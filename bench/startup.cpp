// Start-up time of the editor: from launching the process to the first painted page of a demo
// song, on the offscreen platform. Each iteration starts `plectaro --print-startup-time` in a
// fresh home folder (so the first run's defaults are included) and waits for it to quit. The
// counter "own_ms" is the program's own figure, from its main() to the first paint.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

// Runs the editor once; returns its own start-up figure in ms, or a negative number on failure.
double runOnce(const std::filesystem::path& home, const std::string& song) {
  int out[2];
  if (pipe(out) != 0) return -1;
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
  if (rc != 0 || waitpid(pid, &status, 0) < 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    return -1;
  const size_t at = text.find("startup_ms ");
  return at == std::string::npos ? -1 : std::atof(text.c_str() + at + 11);
}

void BM_StartupToFirstPage(benchmark::State& state) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const std::string song = std::string(PLECTARO_SOURCE_DIR) + "/data/examples/riff.plm";
  const auto home = std::filesystem::temp_directory_path() / ("plectaro-bench-" + std::to_string(getpid()));
  double own = 0;
  for (auto _ : state) {
    std::filesystem::remove_all(home);
    const auto t0 = std::chrono::steady_clock::now();
    const double ms = runOnce(home, song);
    const auto t1 = std::chrono::steady_clock::now();
    if (ms < 0) {
      state.SkipWithError("the editor did not start or did not report its start-up time");
      break;
    }
    own += ms;
    state.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
  }
  std::filesystem::remove_all(home);
  state.counters["own_ms"] = benchmark::Counter(own, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_StartupToFirstPage)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

}  // namespace

BENCHMARK_MAIN();
