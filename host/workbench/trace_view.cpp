#include "host/workbench/trace_view.h"

#include <algorithm>
#include <cwctype>

#include "host/workbench/trace_texts.h"

namespace NWorkbench {
namespace {

std::wstring LowerCase(std::wstring text) {
  for (wchar_t& letter : text) letter = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(letter)));
  return text;
}

std::vector<std::wstring> Words(const std::wstring& text) {
  std::vector<std::wstring> words;
  std::wstring word;
  for (const wchar_t letter : text + L' ') {
    if (!std::iswspace(static_cast<std::wint_t>(letter))) {
      word += letter;
    } else if (!word.empty()) {
      words.push_back(LowerCase(std::move(word)));
      word.clear();
    }
  }
  return words;
}

}  // namespace

void TraceView::SetFilter(const std::wstring& text) {
  mWords = Words(text);
  Reset();
}

void TraceView::SetNumberBase(std::uint32_t base) {
  if (base == mNumberBase) return;
  mNumberBase = base;
  if (HasFilter()) Reset();
}

// A view that is paused can be filtered anew.
void TraceView::Reset() {
  mMatches.clear();
  if (!mPaused || mLimit > mStore.End()) {
    mFirst = mStore.First();
    mLimit = mStore.End();
  }
  mEnd = mFirst;
}

void TraceView::Pause(bool paused) { mPaused = paused; }

bool TraceView::Update(std::size_t most) {
  if (!mPaused) {
    mFirst = mStore.First();
    mLimit = mStore.End();
    while (!mMatches.empty() && mMatches.front() < mFirst) mMatches.pop_front();
  }
  mEnd = std::max(mEnd, mStore.First());
  if (!HasFilter()) {
    mEnd = mLimit;
    return true;
  }
  const std::uint64_t limit = std::min<std::uint64_t>(mLimit, mEnd + most);
  for (; mEnd < limit; ++mEnd) {
    if (Matches(mStore.Row(mEnd))) mMatches.push_back(mEnd);
  }
  return mEnd >= mLimit;
}

const TraceRow* TraceView::At(std::size_t position) const {
  if (position >= Count()) return nullptr;
  const std::uint64_t number = HasFilter() ? mMatches[position] : mFirst + position;
  return number >= mStore.First() && number < mStore.End() ? &mStore.Row(number) : nullptr;
}

bool TraceView::Matches(const TraceRow& row) const {
  const std::wstring line = LowerCase(TraceLine(row, mNumberBase));
  return std::all_of(mWords.begin(), mWords.end(),
                     [&](const std::wstring& word) { return line.find(word) != std::wstring::npos; });
}

}  // namespace NWorkbench
