#include "host/bench/node_words.h"

#include <algorithm>
#include <cstdio>

#include "host/buses/candump.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

// Letters of one column: Latin, Greek, Cyrillic. No controls, no combining marks, nothing that changes the
// direction of the text.
constexpr std::pair<wchar_t, wchar_t> kPrintable[] = {
    {0x20, 0x7E}, {0xA1, 0xAC}, {0xAE, 0x2AF}, {0x370, 0x482}, {0x48A, 0x52F}};

bool IsPrintable(wchar_t character) {
  return std::any_of(std::begin(kPrintable), std::end(kPrintable), [&](const auto& range) {
    return character >= range.first && character <= range.second;
  });
}

std::string Quoted(const std::string& text) { return '"' + NRuntime::ToUtf8(Printable(text)) + '"'; }

std::string ErrorChange(std::uint32_t errorRegister) {
  const std::string words = ErrorWords(errorRegister);
  return "error register " + ErrorNumber(errorRegister) + (words.empty() ? "" : " (" + words + ")");
}

bool IsBefore(const ScannedNode& left, const ScannedNode& right) {
  return std::pair(left.channel, left.id) < std::pair(right.channel, right.id);
}

// Collects what is new about one node.
class Comparison {
 public:
  Comparison(const ScannedNode& before, const ScannedNode& after, std::vector<NodeChange>& changes)
      : mBefore(before), mAfter(after), mChanges(changes) {}

  void Run(bool isNew) {
    const std::string state = NRuntime::ToUtf8(StateWords(mAfter));
    if (isNew) {
      Add("heard, state " + state);
    } else if (mBefore.state != mAfter.state) {
      Add("state " + state);
    }
    if (mBefore.alive != mAfter.alive) Add(mAfter.alive ? "alive" : "silent");
    if (mBefore.errorRegister != mAfter.errorRegister) Add(ErrorChange(mAfter.errorRegister));
    CompareMaster();
    CompareIdentity();
  }

 private:
  void CompareMaster() {
    const std::string& master = mAfter.cells[NSdk::kColumnMaster];
    const std::string& priority = mAfter.cells[NSdk::kColumnPriority];
    if (mBefore.cells[NSdk::kColumnMaster] != master)
      Add(master == " " ? "no longer NMT master" : "NMT master");
    if (mBefore.cells[NSdk::kColumnPriority] != priority) {
      Add("priority as NMT master " + NRuntime::ToUtf8(Printable(priority)));
    }
  }

  void CompareIdentity() {
    if (mAfter.profile && mBefore.profile != mAfter.profile)
      Add("profile " + std::to_string(*mAfter.profile));
    if (mAfter.name && mBefore.name != mAfter.name) Add("name " + Quoted(*mAfter.name));
    if (mAfter.vendorId && mBefore.vendorId != mAfter.vendorId)
      Add("vendor-ID " + Hexadecimal(*mAfter.vendorId));
    if (mAfter.serial && mBefore.serial != mAfter.serial)
      Add("serial number " + std::to_string(*mAfter.serial));
  }

  void Add(std::string text) { mChanges.push_back({mAfter.channel, mAfter.id, std::move(text)}); }

  const ScannedNode& mBefore;
  const ScannedNode& mAfter;
  std::vector<NodeChange>& mChanges;
};

// What a node is compared with that was not there before.
ScannedNode Nothing(const ScannedNode& node) {
  ScannedNode nothing;
  nothing.alive = true;  // heard
  nothing.cells[NSdk::kColumnMaster] = " ";
  nothing.cells[NSdk::kColumnPriority] = "?";
  nothing.id = node.id;
  nothing.channel = node.channel;
  return nothing;
}

}  // namespace

std::wstring Printable(std::string_view utf8) {
  std::wstring text = NRuntime::ToWide(utf8);
  std::replace_if(
      text.begin(), text.end(), [](wchar_t character) { return !IsPrintable(character); }, L'?');
  return text;
}

std::wstring StateWords(const ScannedNode& node) {
  std::wstring text = Printable(node.cells[NSdk::kColumnState]);
  if (!text.empty()) return text;
  return node.state == NSdk::kNodeStateUnknown ? L"unknown" : std::to_wstring(node.state);
}

std::string Hexadecimal(std::uint32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "%lXh", static_cast<unsigned long>(number));
  return text;
}

std::string ErrorNumber(std::uint32_t errorRegister) {
  char text[16];
  std::snprintf(text, sizeof text, "%02lXh", static_cast<unsigned long>(errorRegister));
  return text;
}

std::string ErrorWords(std::uint32_t errorRegister) {
  constexpr const char* kBits[] = {"generic",       "current",        "voltage",  "temperature",
                                   "communication", "device profile", "reserved", "manufacturer"};
  std::string words;
  for (unsigned bit = 0; bit < std::size(kBits); ++bit) {
    if (errorRegister >> bit & 1) words += (words.empty() ? "" : ", ") + std::string(kBits[bit]);
  }
  return words;
}

std::vector<NodeChange> DescribeChanges(const std::vector<ScannedNode>& before,
                                        const std::vector<ScannedNode>& after) {
  std::vector<NodeChange> changes;
  for (const ScannedNode& node : after) {
    const auto found = std::lower_bound(before.begin(), before.end(), node, IsBefore);
    if (found == before.end() || IsBefore(node, *found)) {
      Comparison(Nothing(node), node, changes).Run(true);
    } else {
      Comparison(*found, node, changes).Run(false);
    }
  }
  return changes;
}

std::string ChangeLine(const NodeChange& change) {
  return "  " + NBuses::InterfaceName(change.channel) + "  node " + std::to_string(change.node) + ": " +
         change.text;
}

std::string NodeCount(std::size_t count) { return std::to_string(count) + (count == 1 ? " node" : " nodes"); }

}  // namespace NBench
