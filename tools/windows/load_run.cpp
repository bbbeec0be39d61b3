// load_run BUS SECONDS FRAMES_PER_SECOND: how the program does on a busy bus, with trace and scanner open.
// The frames come from benchmarks/busy_bus; keys are pressed all the while, and the time is taken until the
// program has handled them. Prints the figures; status 1: frames were lost, or a tenth of a second was not
// kept.
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <future>
#include <map>

#include "host/workbench/win/command_ids.h"
#include "tests/workbench/win/program.h"

namespace {

using namespace NWorkbenchTest;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr WORD kKey = VK_F24;  // means nothing to anybody
constexpr auto kBetweenKeys = 25ms;
constexpr double kLongestAnswer_ms = 100;
constexpr std::size_t kLongestShown = 6;

std::atomic<std::int64_t> gPressed_ns = 0;  // 0: the last key has arrived
struct Answer {
  double took_ms;
  double at_s;  // when the key was pressed, from the beginning
  auto operator<=>(const Answer&) const = default;
};
std::vector<Answer> gAnswers;
std::int64_t gBegin_ns = 0;

std::int64_t Now_ns() { return Clock::now().time_since_epoch().count(); }

// The key has been handled.
void NoteAnswer() {
  const auto pressed = gPressed_ns.exchange(0);
  if (pressed == 0) return;
  gAnswers.push_back(
      {static_cast<double>(Now_ns() - pressed) / 1e6, static_cast<double>(pressed - gBegin_ns) / 1e9});
}

void PressKeys(const std::atomic<bool>& stop) {
  while (!stop) {
    if (gPressed_ns == 0) {
      gPressed_ns = Now_ns();
      INPUT inputs[2] = {};
      for (INPUT& input : inputs) input.type = INPUT_KEYBOARD;
      inputs[0].ki.wVk = inputs[1].ki.wVk = kKey;
      inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
      SendInput(2, inputs, sizeof(INPUT));
    }
    std::this_thread::sleep_for(kBetweenKeys);
  }
}

// What the machine itself takes away: how late a thread comes that does nothing but sleep.
double LongestLateness_ms(const std::atomic<bool>& stop) {
  constexpr auto kSleep = 5ms;
  double longest = 0;
  while (!stop) {
    const auto begin = Clock::now();
    std::this_thread::sleep_for(kSleep);
    longest =
        std::max(longest, std::chrono::duration<double, std::milli>(Clock::now() - begin - kSleep).count());
  }
  return longest;
}

// What the program's thread was kept by: each window with each message.
class Handlings {
 public:
  void Add(HWND window, UINT message, std::chrono::nanoseconds time) {
    Handling& handling = mHandlings[{window, message}];
    if (handling.name.empty()) handling.name = NameOf(window);
    const double time_ms = std::chrono::duration<double, std::milli>(time).count();
    ++handling.count;
    handling.total_ms += time_ms;
    handling.longest_ms = std::max(handling.longest_ms, time_ms);
  }
  void PrintLongest(std::chrono::seconds span) const {
    std::vector<std::pair<UINT, Handling>> sorted;
    for (const auto& [key, handling] : mHandlings) sorted.emplace_back(key.second, handling);
    std::sort(sorted.begin(), sorted.end(), [](const auto& left, const auto& right) {
      return left.second.longest_ms > right.second.longest_ms;
    });
    sorted.resize(std::min(sorted.size(), kPrinted));
    for (const auto& [message, handling] : sorted) {
      std::printf("handled    message %04X of %s: %d times, longest %.1f ms, %.1f %% of the time\n", message,
                  handling.name.c_str(), handling.count, handling.longest_ms,
                  handling.total_ms / (10.0 * static_cast<double>(span.count())));
    }
  }

 private:
  static constexpr std::size_t kPrinted = 8;
  struct Handling {
    std::string name;
    int count = 0;
    double total_ms = 0, longest_ms = 0;
  };

  static std::string NameOf(HWND window) {
    std::string name;
    for (int level = 0; window && level < 2; ++level, window = GetParent(window)) {
      char part[64] = {};
      GetClassNameA(window, part, sizeof part);
      name = part + (name.empty() ? "" : " / " + name);
    }
    return name;
  }

  std::map<std::pair<HWND, UINT>, Handling> mHandlings;
};

double Megabytes() {
  PROCESS_MEMORY_COUNTERS counters = {};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return static_cast<double>(counters.WorkingSetSize) / (1024 * 1024);
}

double ThreadSeconds() {
  FILETIME unused, kernel, user;
  GetThreadTimes(GetCurrentThread(), &unused, &unused, &kernel, &user);
  const auto ticks = [](FILETIME time) {
    return static_cast<double>(time.dwHighDateTime) * 4294967296.0 + static_cast<double>(time.dwLowDateTime);
  };
  return (ticks(kernel) + ticks(user)) / 1e7;
}

std::string Configuration(const std::string& bus) {
  const auto file = WriteConfiguration("load.json", R"({"number": 1, "bus": ")" + bus + R"("})",
                                       R"(, "blocks": [{"progId": "HarlowPlugIn.CANopenScanner",
          "window": {"x": 0, "y": 420, "width": 640, "height": 200, "open": true, "maximized": false}}])");
  return file.string();
}

int Measure(const std::string& bus, std::chrono::seconds span, int perSecond) {
  Program program(Configuration(bus));
  SetForegroundWindow(program.Main());
  program.Command(NWorkbench::kMeasureStart);
  if (!program.Wait([&] { return program.TraceRows() > 0; })) return std::printf("no frame has come\n"), 2;
  Handlings handlings;
  program.SetWatch([&](HWND window, UINT message, auto time) {
    handlings.Add(window, message, time);
    if (message == WM_KEYDOWN) NoteAnswer();
  });
  const double before = Megabytes(), busyBefore = ThreadSeconds();
  gBegin_ns = Now_ns();
  std::atomic<bool> stop = false;
  std::thread keys([&] { PressKeys(stop); });
  auto lateness = std::async(std::launch::async, [&] { return LongestLateness_ms(stop); });
  const auto begin = Clock::now();
  double middle = 0;
  while (Clock::now() < begin + span) {
    program.Wait([until = Clock::now() + 1s] { return Clock::now() >= until; });
    if (middle == 0 && Clock::now() > begin + span / 2) middle = Megabytes();
  }
  const double busy = ThreadSeconds() - busyBefore;
  stop = true;
  keys.join();
  const double late = lateness.get();
  const auto total = static_cast<int>(span.count()) * perSecond;
  program.Wait([&] { return program.TraceRows() >= std::min(total, 1'000'000); });
  std::sort(gAnswers.begin(), gAnswers.end());
  if (gAnswers.empty()) return std::printf("no key has arrived\n"), 2;
  const auto part = [&](double share) {
    return gAnswers[static_cast<std::size_t>(share * static_cast<double>(gAnswers.size() - 1))].took_ms;
  };
  const int rows = program.TraceRows();
  std::printf("frames     %d in %d s, %d in the trace, %d lost\n", total, static_cast<int>(span.count()),
              rows, std::min(total, 1'000'000) - rows);
  std::printf("answers    %zu keys: median %.1f ms, 99 %% %.1f ms, longest %.1f ms\n", gAnswers.size(),
              part(0.5), part(0.99), part(1));
  std::printf("           the longest:");
  for (std::size_t i = gAnswers.size(); i > 0 && i + kLongestShown > gAnswers.size(); --i)
    std::printf(" %.1f ms at %.1f s%s", gAnswers[i - 1].took_ms, gAnswers[i - 1].at_s, i > 1 ? "," : "");
  std::printf("\n");
  std::printf("machine    a thread that only sleeps was late by up to %.1f ms\n", late);
  std::printf("memory     %.0f MB at the start, %.0f MB in the middle, %.0f MB at the end\n", before, middle,
              Megabytes());
  std::printf("thread     busy %.0f %% of the time\n", 100 * busy / static_cast<double>(span.count()));
  handlings.PrintLongest(span);
  for (const auto& text : program.Messages()) std::printf("message    %ls\n", text.c_str());
  std::fflush(stdout);
  return rows < std::min(total, 1'000'000) || part(1) > kLongestAnswer_ms ? 1 : 0;
}

}  // namespace

int main(int count, char** arguments) {
  const int seconds = count > 2 ? std::atoi(arguments[2]) : 0;
  const int perSecond = count > 3 ? std::atoi(arguments[3]) : 0;
  if (seconds < 1 || perSecond < 1) {
    std::fputs("usage: load_run BUS SECONDS FRAMES_PER_SECOND\n", stderr);
    return 2;
  }
  return Measure(arguments[1], std::chrono::seconds(seconds), perSecond);
}
