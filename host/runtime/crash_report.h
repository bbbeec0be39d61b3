#pragma once
// What a crash leaves behind.

#include <filesystem>

namespace NRuntime {

/// From now on, when the program crashes (a fault of the processor, an exception that nobody catches, an
/// abort), it first writes PROGRAM-crash-NUMBER.txt into the folder, which is made when it is not there, and
/// says so on standard error: what happened, the version, and the calls that led there; on Windows a minidump
/// .dmp beside it. Once the text is written it calls `afterwards`, if given, in what remains of the program:
/// nothing may be allocated there, nor anything relied on. Then it ends by the signal, or with the code of
/// the exception. Call once, early. Returns the path of the text. Nothing happens when the folder is empty,
/// nor is there a path.
std::filesystem::path ReportCrashes(const char* program, const char* version,
                                    const std::filesystem::path& folder, void (*afterwards)() = nullptr);

/// Where programs keep what is nobody's document: the user's state folder (XDG) or local application data,
/// with "ostrel" behind it. Empty: the system tells none.
std::filesystem::path StateFolder();

}  // namespace NRuntime
