#pragma once
// The host's loader of device descriptions: EDS and DCF files (CiA 306). It lies beside the host's program as
// codescrldr.so or codescrldr.dll and is loaded at run time.
//
// Files of the field are seldom as they should be. The loader takes what can be used, and says in its
// findings what was wrong and what it assumed. Objects, lists and values hold what was loaded; they stay as
// they are when the loader loads something else. Whoever loads the library releases every object that came
// out of it before the library is unloaded.

#include "sdk/com_base.h"

namespace CODESCRLDR {

/// Results of a load and codes of its findings. 0: everything is fine. Up to kLastError: nothing could be
/// used. Above: warnings, the rest was loaded.
enum Result : std::uint32_t {
  kLoaded = 0,
  kFileMissing = 1,
  kFileUnreadable = 2,
  kFileTooLarge = 3,     ///< more than 64 MiB
  kNotADescription = 4,  ///< it has no object and no list of objects
  kOutOfMemory = 5,
  kLastError = 0x1000,

  kWarnSyntax = 0x1001,          ///< a line is neither section nor KEY=VALUE; it is skipped
  kWarnMissingSection = 0x1002,  ///< a list names an object that has no section; the object is left out
  kWarnUnlisted = 0x1003,        ///< an object that no list names; it is taken
  kWarnWrongCount = 0x1004,      ///< fewer or more entries than a count says; what is there counts
  kWarnUnknownType = 0x1005,     ///< object, data or access type
  kWarnMissingKey = 0x1006,
  kWarnBadNumber = 0x1007,  ///< a number cannot be read, or does not fit where it stands
  kWarnDuplicate = 0x1008,  ///< a section or key stands twice; the first one counts
  kWarnSkipped = 0x1009,    ///< something that the loader does not read, modules for example
  kWarnTooMuch = 0x100A,    ///< more objects or findings than the loader takes
};

/// Codes of access types.
enum AccessType : std::uint32_t {
  kReadWrite = 0,
  kWriteOnly = 1,
  kReadOnly = 2,
  kConst = 3,
  kReadWriteInput = 4,   ///< rwr: mapped, it is read by the master
  kReadWriteOutput = 5,  ///< rww
  kAccessUnknown = 0xFFFFFFFF,
};

/// Object codes (CiA 301, 7.4.3).
enum ObjectType : std::uint32_t {
  kObjectNull = 0,
  kObjectDomain = 2,
  kObjectDefType = 5,
  kObjectDefStruct = 6,
  kObjectVar = 7,
  kObjectArray = 8,
  kObjectRecord = 9,
};

/// A value as a file gives it: a number, a formula with the node-ID, or a text.
struct ZCOObjectValue : IUnknown {
  static constexpr IID kIid = {0xf9b22c76, 0x6c83, 0x4ecd, {0xa6, 0xaa, 0x7f, 0xd6, 0x49, 0x2e, 0x0f, 0xfe}};

  /// As it stands in the file.
  virtual HRESULT STDMETHODCALLTYPE GetSourceText(wchar_t** text) = 0;
  /// The same, but for a formula its result, "0x185", where the node-ID is known.
  virtual HRESULT STDMETHODCALLTYPE GetText(wchar_t** text) = 0;
  /// The value of an integer; those of signed types may be negative. E_FAIL: it is no integer of at most 63
  /// bits and sign, or a formula whose node-ID is not known.
  virtual HRESULT STDMETHODCALLTYPE GetNumber(std::int64_t* number) = 0;
  /// The value of an integer or a floating-point number. E_FAIL: as above.
  virtual HRESULT STDMETHODCALLTYPE GetReal(double* number) = 0;
  /// The bytes as an SDO carries them, at most bufferSize, and how many there are in all. Without a buffer
  /// only the latter. E_FAIL: the text does not suit the data type, or the node-ID is not known.
  virtual HRESULT STDMETHODCALLTYPE GetBytes(std::uint32_t bufferSize, std::uint8_t* buffer,
                                             std::uint32_t* size) = 0;
  /// Not 0 when it is a formula with the node-ID.
  virtual HRESULT STDMETHODCALLTYPE IsFormula(std::uint32_t* formula) = 0;
};

/// An object or sub-object.
struct ZCOObject : IUnknown {
  static constexpr IID kIid = {0xd84356be, 0x1a64, 0x4625, {0xad, 0x4e, 0x32, 0xbd, 0x0d, 0x07, 0xae, 0xf7}};

  /// Sub-index 0 for an object. Either pointer may be null.
  virtual HRESULT STDMETHODCALLTYPE GetIndex(std::uint16_t* index, std::uint8_t* subindex) = 0;
  /// Its denotation, else its parameter name.
  virtual HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) = 0;
  /// An ObjectType, or another number that stands in the file.
  virtual HRESULT STDMETHODCALLTYPE GetObjectType(std::uint32_t* type) = 0;
  /// Number of the data type, as CiA 301, 7.4.7.1, has them; 0: none, as for an object with sub-objects.
  virtual HRESULT STDMETHODCALLTYPE GetDataType(std::uint32_t* type) = 0;
  /// Its name there, "UNSIGNED32"; of an object with sub-objects "ARRAY" or "RECORD"; a number, "0x1C", for a
  /// type that is not known.
  virtual HRESULT STDMETHODCALLTYPE GetTypeName(wchar_t** name) = 0;
  /// Bytes of a value; 0: its length varies, or the type is unknown.
  virtual HRESULT STDMETHODCALLTYPE GetSize(std::uint32_t* size) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetAccessType(AccessType* access) = 0;
  /// Not 0 for read-only and constant objects.
  virtual HRESULT STDMETHODCALLTYPE IsReadOnly(std::uint32_t* readOnly) = 0;
  /// Not 0: it may stand in a PDO.
  virtual HRESULT STDMETHODCALLTYPE IsMappable(std::uint32_t* mappable) = 0;
  /// Bit 0: not to be written by a download of the whole description; bit 1: nor read by an upload.
  virtual HRESULT STDMETHODCALLTYPE GetObjectFlags(std::uint32_t* flags) = 0;
  /// These answer S_FALSE and write nothing when the file gives none. The value of an object is its parameter
  /// value, else its default value.
  virtual HRESULT STDMETHODCALLTYPE GetValue(ZCOObjectValue** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDefaultValue(ZCOObjectValue** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetLowLimit(ZCOObjectValue** value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetHighLimit(ZCOObjectValue** value) = 0;
  /// Empty for an object that has none, and for a sub-object.
  virtual HRESULT STDMETHODCALLTYPE GetSubObjects(struct ZCOObjectList** objects) = 0;
};

/// Objects in the order of their indices, or sub-objects in that of their sub-indices.
struct ZCOObjectList : IUnknown {
  static constexpr IID kIid = {0xe250a249, 0x5a7c, 0x4f33, {0x8a, 0x04, 0xdd, 0x6f, 0x21, 0x53, 0xac, 0xfb}};

  virtual HRESULT STDMETHODCALLTYPE GetCount(std::uint32_t* count) = 0;
  /// Position from 0. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetAt(std::uint32_t position, ZCOObject** object) = 0;
  /// An object of a list of objects by its index, a sub-object of a list of sub-objects by its sub-index.
  /// S_FALSE, nothing written: there is none.
  virtual HRESULT STDMETHODCALLTYPE Find(std::uint16_t number, ZCOObject** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetIterator(struct ZCOObjectListIter** iterator) = 0;
};

struct ZCOObjectListIter : IUnknown {
  static constexpr IID kIid = {0x0f8d7df4, 0x4cad, 0x45a4, {0xb7, 0x7d, 0xf5, 0x17, 0x9e, 0xa2, 0xb2, 0xc0}};

  /// S_FALSE, nothing written: that was the last.
  virtual HRESULT STDMETHODCALLTYPE Next(ZCOObject** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
};

struct ZCODescrLdr : IUnknown {
  static constexpr IID kIid = {0x979cfb48, 0x2a46, 0x4e0c, {0x98, 0x38, 0xd0, 0xa0, 0xe1, 0x09, 0xe6, 0x5c}};

  /// Node-ID of formulas in what is loaded from now on, 1 to 127; it goes before that of a DCF. 0: that of
  /// the file. E_INVALIDARG: another number.
  virtual HRESULT STDMETHODCALLTYPE SetNodeId(std::uint32_t nodeId) = 0;
  /// Loads a file in the place of what was loaded before. Answers a Result, not an HRESULT: that of the first
  /// finding, 0 when there is none. After an error nothing is loaded.
  virtual std::uint32_t STDMETHODCALLTYPE Load(const wchar_t* path) = 0;
  /// What was found at the last load, in the order of the lines.
  virtual HRESULT STDMETHODCALLTYPE GetFindingCount(std::uint32_t* count) = 0;
  /// Finding at a position from 0: its Result, its line (0: the file as a whole) and one line of text
  /// "FILE:LINE: what is wrong; what was assumed". Each pointer may be null. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetFinding(std::uint32_t position, std::uint32_t* code,
                                               std::uint32_t* line, wchar_t** text) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetObjects(ZCOObjectList** objects) = 0;
  /// The node-ID that formulas are calculated with. S_FALSE, nothing written: none is known.
  virtual HRESULT STDMETHODCALLTYPE GetNodeId(std::uint32_t* nodeId) = 0;
  /// Bit rate that a DCF sets, in bit/s. S_FALSE, nothing written: none.
  virtual HRESULT STDMETHODCALLTYPE GetBitRate(std::uint32_t* bitRate) = 0;
  /// A text about the device by section and key, "DeviceInfo" and "ProductName" for example; both spellings
  /// of "DeviceComissioning" name the same. S_FALSE, nothing written: the file has none.
  virtual HRESULT STDMETHODCALLTYPE GetInformation(const wchar_t* section, const wchar_t* key,
                                                   wchar_t** text) = 0;
};

/// The one export of the library, undecorated: makes a loader.
/// E_NOINTERFACE: `iid` is not that of ZCODescrLdr or IUnknown.
inline constexpr char kCreateLoaderName[] = "DllCreateCODescrLdr";
using DllCreateCODescrLdrFunction = HRESULT(STDAPICALLTYPE*)(REFIID iid, void** loader);

}  // namespace CODESCRLDR
