#pragma once
// How the items of the lists fared when they were sent last.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "ig/generator.h"

namespace NIg {

/// Images in front of a row, by their place in the bitmap.
enum class ResultImage { None = -1, Sending, Good, Bad };

class TransmissionResults {
 public:
  /// The item was sent, or its SDO transfer begun. In the sequence it is now the one that is being sent.
  void Sent(const ItemPlace& place, bool isTransfer);
  void Failed(const ItemPlace& place);
  void Ended(const ItemPlace& place, const SdoTransferResult& result);
  /// No item of the sequence is being sent any more.
  void SequenceOver() { mCurrent.reset(); }
  /// Rows have changed their places, or a new run begins.
  void Clear(NSdk::GeneratorList list);
  void ClearRow(const ItemPlace& place);

  /// Whether any item of the list has a result.
  bool HasAny(NSdk::GeneratorList list) const { return !mResults[list].empty(); }
  /// Row of the sequence that is being sent.
  std::optional<std::size_t> Current() const { return mCurrent; }
  /// In the user's language; empty: the item was not sent.
  std::wstring Text(const ItemPlace& place) const;
  ResultImage Image(const ItemPlace& place) const;

 private:
  enum class State { None, Sent, Transferring, Failed, Ended };
  struct Result {
    State state = State::None;
    SdoTransferResult transfer;
  };

  Result& At(const ItemPlace& place);
  const Result* Find(const ItemPlace& place) const;

  std::array<std::vector<Result>, 2> mResults;
  std::optional<std::size_t> mCurrent;
};

}  // namespace NIg
