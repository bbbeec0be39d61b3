#pragma once

#include <windows.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/workbench/win/main_window.h"

namespace NWorkbenchTest {

/// The program with its windows on the test's thread, driven from outside: by messages to what is on the
/// screen.
class Program {
 public:
  explicit Program(const std::filesystem::path& configuration,
                   const std::filesystem::path& module = OSTREL_MODULE);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// Handles messages until it is so. False: it has not become so within ten seconds.
  bool Wait(const std::function<bool()>& isSo);
  void Command(int id) { SendMessageW(Main(), WM_COMMAND, static_cast<WPARAM>(id), 0); }
  /// Is told how long each message has kept the program; its window may be gone by then.
  using Watch = std::function<void(HWND window, UINT message, std::chrono::nanoseconds time)>;
  void SetWatch(Watch watch) { mWatch = std::move(watch); }
  /// A command of the module by its caption in a menu, from the left and from 0. False: it is not there.
  bool CommandOfMenu(int menu, const std::wstring& caption);

  NWorkbench::Workbench& Host() { return mWindow->Host(); }
  HWND Main() const { return mMain; }
  bool IsClosed() const { return !IsWindow(mMain); }
  /// Rows of the trace; messages that were told.
  int TraceRows() const;
  std::vector<std::wstring> Messages() const;
  std::vector<std::wstring> SetupLines() const;
  std::wstring Status(int part) const;
  /// A window of this class anywhere inside. Null: there is none.
  HWND Child(const wchar_t* className) const;
  /// A control of a block's window. Null: there is no such window.
  HWND Control(int id) const;

 private:
  void Handle(MSG& message);

  std::unique_ptr<NWorkbench::MainWindow> mWindow;
  Watch mWatch;
  HWND mMain = nullptr;
};

/// Answers the message boxes of this process on a thread of its own, and notes their texts.
class Answers {
 public:
  /// `answer` is the button that is pressed, once `when` says so, which is asked on that thread.
  explicit Answers(
      int answer, std::function<bool()> when = [] { return true; });
  ~Answers();
  Answers(const Answers&) = delete;
  Answers& operator=(const Answers&) = delete;

  bool HasAnswered() const { return mHasAnswered; }
  /// All texts, once no box is open any more.
  std::wstring Texts();

 private:
  void Run();

  const int mAnswer;
  std::function<bool()> mWhen;
  std::atomic<bool> mStop = false, mHasAnswered = false;
  std::wstring mTexts;
  std::thread mThread;
};

/// A configuration file in a folder of the test's own.
std::filesystem::path WriteConfiguration(const std::string& name, const std::string& channels,
                                         const std::string& more = "");
std::string ReadFile(const std::filesystem::path& file);

}  // namespace NWorkbenchTest
