#pragma once

#include <deque>
#include <string>
#include <vector>

#include "host/workbench/trace_store.h"

namespace NWorkbench {

/// What a trace window shows of a store: all rows or those that a filter lets through, up to now or up to
/// the moment of a pause.
class TraceView {
 public:
  explicit TraceView(const TraceStore& store) : mStore(store) {}

  /// Rows whose line has every word of the text in it, in upper or lower case. Empty: all rows.
  void SetFilter(const std::wstring& text);
  bool HasFilter() const { return !mWords.empty(); }
  void SetNumberBase(std::uint32_t base);
  std::uint32_t NumberBase() const { return mNumberBase; }

  /// While it is paused the view stays as it is; what comes meanwhile is shown afterwards.
  void Pause(bool paused);
  bool IsPaused() const { return mPaused; }

  /// Looks at rows that have come, `most` of them at once, since to filter costs time. False: there are more.
  bool Update(std::size_t most);

  /// Rows in the view, as of the last update.
  std::size_t Count() const {
    return HasFilter() ? mMatches.size() : static_cast<std::size_t>(mLimit - mFirst);
  }
  /// Row at a position below Count(). Null: it has made room for a newer one during a pause.
  const TraceRow* At(std::size_t position) const;

  /// After the store was cleared.
  void Reset();

 private:
  bool Matches(const TraceRow& row) const;

  const TraceStore& mStore;
  std::vector<std::wstring> mWords;  // in lower case
  std::uint32_t mNumberBase = 16;
  bool mPaused = false;
  std::uint64_t mFirst = 0, mLimit = 0;  // numbers of the rows in the view, filtered or not
  std::uint64_t mEnd = 0;                // rows below it have been looked at
  std::deque<std::uint64_t> mMatches;    // numbers of the rows that the filter lets through
};

}  // namespace NWorkbench
