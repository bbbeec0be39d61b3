#pragma once

#include <string>
#include <vector>

#include "host/buses/candump.h"
#include "host/runtime/can_adapter.h"

namespace NTest {

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
