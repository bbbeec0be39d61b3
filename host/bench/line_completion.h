#pragma once
// What the completion key does to a line that is being edited.

#include <string>
#include <vector>

#include "host/bench/line_source.h"

namespace NBench {

struct CompletedLine {
  std::string insert;     ///< goes in at the cursor, where nothing was taken away
  std::size_t erase = 0;  ///< bytes in front of the cursor that go first
  std::vector<std::string>
      choices;  ///< there is more than one, and nothing that they have in common to insert
};

/// Completes the word in front of the cursor; `before` is the line up to there. A name with a blank gets
/// quotation marks, a whole word a blank behind it, a folder its slash.
CompletedLine CompleteWord(const std::string& before, const Completer& completer);

}  // namespace NBench
