#pragma once

namespace NCommon {

/// Where a bar stands that divides a length in two parts. It keeps its share when the length changes.
class SplitPosition {
 public:
  /// `share` of the first part, 0 to 1.
  explicit SplitPosition(double share) : mFirst(share), mShare(share) {}

  /// Size of the first part. Both parts have their least size; where the length has no room for that, they
  /// shrink alike. `length` is without the bar.
  int At(int length, int leastFirst, int leastSecond) const;
  /// The user puts the bar there.
  void MoveTo(int position, int length);
  /// Back to where it was first.
  void Reset() { mShare = mFirst; }

 private:
  double mFirst;
  double mShare;
};

}  // namespace NCommon
