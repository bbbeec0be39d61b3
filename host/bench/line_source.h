#pragma once
// Where the lines of a shell come from: a script, a pipe, or a person at a terminal.

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/runtime/asio_loop.h"

namespace NBench {

/// What the user has asked for from outside the lines.
struct Wishes {
  bool interrupted = false;  ///< Ctrl+C; taken back by whoever has acted on it
  bool terminated = false;
};

class LineSource {
 public:
  virtual ~LineSource() = default;
  /// Runs the loop until there is a line, which comes without its end. Empty: there is none any more, or the
  /// program is to end.
  virtual std::optional<std::string> Next() = 0;
  /// Something else is about to be written: what is being edited makes room and comes back behind it.
  virtual void MakeRoom() {}
};

/// What may stand where a line is being edited.
struct Completion {
  std::vector<std::string> words;  ///< all that fit there, begun or not
  bool files = false;              ///< names of files fit as well
};
/// Gets what stands in front of the word that is being completed.
using Completer = std::function<Completion(const std::string& before)>;

/// Standard input, edited by the user. `history` keeps the lines for the next time; empty: nothing does.
std::unique_ptr<LineSource> MakeTerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer completer,
                                               const std::filesystem::path& history);
/// Standard input as it comes.
std::unique_ptr<LineSource> MakePipeSource(NRuntime::AsioLoop& loop, Wishes& wishes);
/// The lines of a file. Throws std::runtime_error, one line that names it.
std::unique_ptr<LineSource> MakeFileSource(const std::filesystem::path& file);

/// Where the history of the user's lines is kept; empty: there is no place for it.
std::filesystem::path HistoryFile();

/// Takes the next line out of `text`, without its end; empty: no line in it is whole.
std::optional<std::string> TakeLine(std::string& text);
/// A pipe that brings no end of a line is given up there.
inline constexpr std::size_t kLongestLine = 1 << 20;

}  // namespace NBench
