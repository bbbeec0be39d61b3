// load_run BUS SECONDS FRAMES_PER_SECOND [sending]: how the program does on a busy bus, with trace and
// scanner open, and a generator that sends SYNC every 10 ms if that is wanted. The frames come from
// benchmarks/busy_bus; keys are pressed all the while, and the time is taken until the program has handled
// them. Prints the figures; status 1: frames were lost, or a tenth of a second was not kept.
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <future>
#include <map>

#include "host/workbench/win/command_ids.h"
#include "resources/resource_ids.h"
#include "tests/windows/window_driver.h"
#include "tests/workbench/win/program.h"

namespace {

using namespace NWorkbenchTest;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr WORD kKey = VK_F24;  // means nothing to anybody
constexpr auto kBetweenKeys = 25ms;
constexpr double kLongestAnswer_ms = 100;
constexpr std::size_t kLongestShown = 6;
constexpr double kWorthTelling_ms = 1;

std::atomic<std::int64_t> gPressed_ns = 0;  // 0: the last key has arrived
struct Answer {
  double took_ms;
  double at_s;  // when the key was pressed, from the beginning
  auto operator<=>(const Answer&) const = default;
};
std::vector<Answer> gAnswers;
std::int64_t gBegin_ns = 0;

std::int64_t Now_ns() { return Clock::now().time_since_epoch().count(); }

// The key has been handled. False: it was the release of one.
bool NoteAnswer() {
  const auto pressed = gPressed_ns.exchange(0);
  if (pressed == 0) return false;
  gAnswers.push_back(
      {static_cast<double>(Now_ns() - pressed) / 1e6, static_cast<double>(pressed - gBegin_ns) / 1e9});
  return true;
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

// What the program's thread was kept by: each window with each message, and what came before each answer.
class Handlings {
 public:
  void Add(HWND window, UINT message, std::chrono::nanoseconds time) {
    Handling& handling = mHandlings[{window, message}];
    if (handling.name.empty()) handling.name = NameOf(window);
    const double time_ms = std::chrono::duration<double, std::milli>(time).count();
    ++handling.count;
    handling.total_ms += time_ms;
    handling.longest_ms = std::max(handling.longest_ms, time_ms);
    NoteStep(handling, message, time_ms);
    if (message == WM_KEYDOWN && NoteAnswer()) EndWait();
  }
  void PrintSlowestAnswer() const {
    std::printf("slowest    %.1f ms after:\n", mSlowest_ms);
    for (const auto& step : mSlowest) std::printf("           %s\n", step.c_str());
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

  // Short ones that follow each other are one step.
  void NoteStep(const Handling& handling, UINT message, double time_ms) {
    const double at_s = static_cast<double>(Now_ns() - gBegin_ns) / 1e9 - time_ms / 1e3;
    if (time_ms < kWorthTelling_ms) {
      if (mShort++ == 0) mShortBegin_s = at_s;
      mShort_ms += time_ms;
      return;
    }
    EndShort();
    AddStep(at_s, "message %04X of %s: %.1f ms", message, handling.name.c_str(), time_ms);
  }
  void EndShort() {
    if (mShort != 0) AddStep(mShortBegin_s, "%d short ones: %.1f ms", mShort, mShort_ms);
    mShort = 0;
    mShort_ms = 0;
  }
  template <class... Values>
  void AddStep(double at_s, const char* format, Values... values) {
    char text[256] = {};
    const int length = std::snprintf(text, sizeof text, "at %.3f s: ", at_s);
    std::snprintf(text + length, sizeof text - static_cast<std::size_t>(length), format, values...);
    mSteps.push_back(text);
  }
  void EndWait() {
    EndShort();
    if (gAnswers.back().took_ms > mSlowest_ms) {
      mSlowest_ms = gAnswers.back().took_ms;
      mSlowest = mSteps;
    }
    mSteps.clear();
  }

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
  std::vector<std::string> mSteps, mSlowest;  // since the last answer; before the slowest one
  double mSlowest_ms = 0;
  int mShort = 0;
  double mShort_ms = 0, mShortBegin_s = 0;
};

double Megabytes() {
  PROCESS_MEMORY_COUNTERS counters = {};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return static_cast<double>(counters.WorkingSetSize) / (1024 * 1024);
}

std::string Configuration(const std::string& bus) {
  const auto file = WriteConfiguration("load.json", R"({"number": 1, "bus": ")" + bus + R"("})",
                                       R"(, "blocks": [{"progId": "HarlowPlugIn.CANopenScanner",
          "window": {"x": 0, "y": 420, "width": 640, "height": 200, "open": true, "maximized": false}},
          {"progId": "HarlowPlugIn.CANopenIG", "settings": {"CANChannel": "1", "LastCOIGSequenceRel": "load.seq"},
          "window": {"x": 100, "y": 100, "width": 640, "height": 400, "open": true, "maximized": false}}])");
  std::ofstream(file.parent_path() / "load.seq") << R"(<CANopenIG><Sequence/><CyclicMsgs>
    <SYNC COBID="0x80" SendCycle="10" SendDelay="0" Enabled="1"/></CyclicMsgs></CANopenIG>)";
  return file.string();
}

// The window of the generator is put away then: its list goes on.
bool StartCyclicList(Program& program) {
  const auto start = [&] { return program.Control(IDC_IG_START); };
  if (!program.Wait([&] { return start() && IsWindowEnabled(start()); })) return false;
  SendMessageW(start(), BM_CLICK, 0, 0);
  SendMessageW(GetParent(GetParent(start())), WM_CLOSE, 0, 0);
  return true;
}

int Measure(const std::string& bus, std::chrono::seconds span, int perSecond, bool isSending) {
  Program program(Configuration(bus));
  SetForegroundWindow(program.Main());
  program.Command(NWorkbench::kMeasureStart);
  const auto received = [&] { return static_cast<int>(program.Host().Loads().at(1).Received()); };
  if (isSending && !StartCyclicList(program)) return std::printf("the generator cannot be started\n"), 2;
  if (!program.Wait([&] { return received() > 0; })) return std::printf("no frame has come\n"), 2;
  Handlings handlings;
  program.SetWatch([&](HWND window, UINT message, auto time) { handlings.Add(window, message, time); });
  const double before = Megabytes(), busyBefore_ms = NTest::ThreadTime_ms();
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
  const double busy_ms = NTest::ThreadTime_ms() - busyBefore_ms;
  stop = true;
  keys.join();
  const double late = lateness.get();
  program.Wait([] { return gPressed_ns == 0; });
  program.SetWatch({});
  const auto total = static_cast<int>(span.count()) * perSecond;
  const auto sent = [&] { return static_cast<int>(program.Host().Loads().at(1).Transmitted()); };
  program.Wait([&] { return received() >= total; });
  program.Wait([&] { return program.TraceRows() >= std::min(received() + sent(), 1'000'000); });
  std::sort(gAnswers.begin(), gAnswers.end());
  if (gAnswers.empty()) return std::printf("no key has arrived\n"), 2;
  const auto part = [&](double share) {
    return gAnswers[static_cast<std::size_t>(share * static_cast<double>(gAnswers.size() - 1))].took_ms;
  };
  const int lost = total - received();
  std::printf("frames     %d in %d s, %d lost, %d sent, %d in the trace\n", total,
              static_cast<int>(span.count()), lost, sent(), program.TraceRows());
  std::printf("answers    %zu keys: median %.1f ms, 99 %% %.1f ms, longest %.1f ms\n", gAnswers.size(),
              part(0.5), part(0.99), part(1));
  std::printf("           the longest:");
  for (std::size_t i = gAnswers.size(); i > 0 && i + kLongestShown > gAnswers.size(); --i)
    std::printf(" %.1f ms at %.1f s%s", gAnswers[i - 1].took_ms, gAnswers[i - 1].at_s, i > 1 ? "," : "");
  std::printf("\n");
  std::printf("machine    a thread that only sleeps was late by up to %.1f ms\n", late);
  std::printf("memory     %.0f MB at the start, %.0f MB in the middle, %.0f MB at the end\n", before, middle,
              Megabytes());
  std::printf("thread     busy %.0f %% of the time\n", busy_ms / (10.0 * static_cast<double>(span.count())));
  handlings.PrintSlowestAnswer();
  handlings.PrintLongest(span);
  for (const auto& text : program.Messages()) std::printf("message    %ls\n", text.c_str());
  std::fflush(stdout);
  return lost != 0 || part(1) > kLongestAnswer_ms ? 1 : 0;
}

}  // namespace

int main(int count, char** arguments) {
  const int seconds = count > 2 ? std::atoi(arguments[2]) : 0;
  const int perSecond = count > 3 ? std::atoi(arguments[3]) : 0;
  if (seconds < 1 || perSecond < 1) {
    std::fputs("usage: load_run BUS SECONDS FRAMES_PER_SECOND [sending]\n", stderr);
    return 2;
  }
  const bool isSending = count > 4 && std::string(arguments[4]) == "sending";
  return Measure(arguments[1], std::chrono::seconds(seconds), perSecond, isSending);
}
