#pragma once
// The sequence file: both message lists of a generator block as XML.
//
//   <CANopenIG>
//     <Sequence>    one element per item, named after its kind: <PAUSE PauseMilliSec="1000" Enabled="1"/>
//     <CyclicMsgs>  the same with the attributes SendCycle and SendDelay
//
// Which attributes a kind has stands in the field tables of canopen/item_kinds.cpp. The XML library writes
// them sorted by name; their order means nothing.

#include <cstdint>
#include <filesystem>
#include <string>

#include "canopen/item_kinds.h"

namespace NIg {

/// Largest sequence file that is read, in bytes. An item takes some 150 to 250 of them.
inline constexpr std::uintmax_t kMaxSequenceFileSize = 64u << 20;

/// Deletes the file at `path`, then writes both lists there.
///
/// Data text that XML cannot carry (control characters, bytes that are no text in the local code page) is
/// written as the byte array of the same bytes when it is a "string:"; in any other text each such character
/// becomes "?".
///
/// Returns 1, also when nothing could be written; 0 only when the XML document has no root element. `fault`
/// (may be null) is emptied, or says what does not stand in the file as it should: no file at all, which is
/// the case after every failed write, since what was begun is removed again; or replaced characters.
/// `written` (may be null) tells the two apart: whether the lists stand in the file. What could not be
/// deleted or opened is still there when they do not.
int SaveSequenceFile(const std::filesystem::path& path, const NCanopen::ItemList& sequence,
                     const NCanopen::ItemList& cyclic, std::string* fault = nullptr, bool* written = nullptr);

/// Appends the items of the file to the lists; `hexDisplay` is the display switch of the block that owns
/// them.
///
/// An element of an unknown name or without a required attribute is skipped, a value that cannot be read
/// keeps the default. Files are not trusted: nothing but the file itself is opened, and one that is larger,
/// deeper or more numerous than any list could be, or that declares a document type of its own, is refused.
///
/// Returns 1; or 0 when the file cannot be parsed, with the lists untouched and the reason in `fault` (may be
/// null; emptied otherwise).
int LoadSequenceFile(const std::filesystem::path& path, NCanopen::ItemList& sequence,
                     NCanopen::ItemList& cyclic, const bool* hexDisplay, std::string* fault = nullptr);

}  // namespace NIg
