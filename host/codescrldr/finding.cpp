#include "host/codescrldr/finding.h"

#include <algorithm>

namespace NDescriptions {
namespace {

constexpr std::size_t kMostFindings = 1000;

// One line of text, whatever the file has put into it.
std::string OneLine(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
  }
  return text;
}

}  // namespace

void Findings::Add(CODESCRLDR::Result code, std::uint32_t line, std::string text) {
  if (mFindings.size() < kMostFindings) {
    mFindings.push_back({code, line, OneLine(std::move(text))});
  } else if (mFindings.size() == kMostFindings) {
    mFindings.push_back({CODESCRLDR::kWarnTooMuch, 0xFFFFFFFF, {}});
  }
}

std::vector<Finding> Findings::Take() {
  std::stable_sort(mFindings.begin(), mFindings.end(),
                   [](const Finding& a, const Finding& b) { return a.line < b.line; });
  if (mFindings.size() > kMostFindings) {
    mFindings.back().line = 0;
    mFindings.back().text =
        "there is more to say; only " + std::to_string(kMostFindings) + " findings are kept";
  }
  return std::move(mFindings);
}

}  // namespace NDescriptions
