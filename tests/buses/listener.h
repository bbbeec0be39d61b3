#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/buses/candump.h"
#include "host/runtime/can_adapter.h"

namespace NTest {

/// What an action that must be refused says.
inline std::string Refusal(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "nothing was refused";
}

/// Notes what an adapter reports.
struct Listener : NRuntime::CanAdapterEvents {
  void OnReceived(const NSdk::CanFrame& frame, NRuntime::Time time) override {
    received.push_back(NBuses::FrameText(frame));
    times.push_back(time);
  }
  void OnSent(const NSdk::CanFrame& frame, NRuntime::Time) override {
    sent.push_back(NBuses::FrameText(frame));
  }
  void OnTrouble(const std::string& text) override { troubles.push_back(text); }
  void OnEnd() override { ++ends; }

  std::vector<std::string> received, sent, troubles;
  std::vector<NRuntime::Time> times;
  int ends = 0;
};

}  // namespace NTest
